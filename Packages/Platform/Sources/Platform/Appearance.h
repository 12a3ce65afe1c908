#pragma once

#include <QObject>
#include <optional>

namespace tilewright {

/// How the user wishes programs to look and to move, and what the desktop can show. Main thread
/// only.
class Appearance : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~Appearance() override;

    /// Whether the desktop blends translucent windows with what lies beneath them now.
    [[nodiscard]] virtual bool blendsWindows() const = 0;
    /// Whether the user asked the desktop for reduced motion; none where the desktop does not tell.
    [[nodiscard]] virtual std::optional<bool> prefersReducedMotion() const = 0;
    /// True when the desktop asks for dark colours through a channel that Qt may not read.
    [[nodiscard]] virtual bool prefersDark() const = 0;

Q_SIGNALS:
    /// `prefersReducedMotion()` has another answer than before.
    void prefersReducedMotionChanged();
    /// `prefersDark()` has another answer than before.
    void prefersDarkChanged();
};

} // namespace tilewright
