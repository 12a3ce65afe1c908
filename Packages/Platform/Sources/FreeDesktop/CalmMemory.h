#pragma once

#include <Platform/MainLoop.h>

#include <QObject>

namespace tilewright {

/// Gives back to the system the code and constants of the program and of its libraries, as far as
/// they are in memory: what is needed again comes from their files, in most cases from the system's
/// cache of them, a fault for every sixteen pages or so.
void giveBackCode();

/// Gives back what free memory the allocator holds.
void giveBackHeap();

/// Gives back what nobody needs once all is calm again: after the start, which goes through code
/// that is never needed afterwards, and after the last of the program's windows has closed. Needs
/// Qt's application object, and has to end before it. Main thread only.
class CalmMemory final : public QObject {
    Q_OBJECT

public:
    /// How long after either.
    static constexpr std::chrono::milliseconds settling{3000};

    /// The loop has to outlive this.
    explicit CalmMemory(MainLoop& loop);

private:
    void begin();

    MainLoop& loop_;
    ScopedTimer timer_;
};

} // namespace tilewright
