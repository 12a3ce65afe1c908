#pragma once

#include <QString>
#include <QtGlobal>

namespace tilewright {

/// Names a power assertion that is held; 0 names none.
using PowerAssertionID = quint32;

/// What creating a power assertion came to.
struct PowerAssertionResult {
    /// 0 on success, else the desktop's error code.
    int status = 0;
    /// The assertion held; 0 unless `status` is 0.
    PowerAssertionID id = 0;
};

/// Keeps the display from going to sleep for lack of input. Main thread only.
///
/// An assertion ends when it is released, and by itself when the process dies, however it dies.
class PowerAssertions {
public:
    virtual ~PowerAssertions() = default;

    /// Creates an assertion of a type (such as "PreventUserIdleDisplaySleep") at a level (255 is
    /// on), under a name that the user may see. Blocks for a bounded moment at most.
    [[nodiscard]] virtual PowerAssertionResult create(const QString& type, quint32 level,
                                                      const QString& name) = 0;
    /// Releases an assertion; an unknown id is ignored.
    virtual void release(PowerAssertionID id) = 0;
};

} // namespace tilewright
