#pragma once

#include "X11Trust.h"

#include <FreeDesktop/DetachedProcess.h>
#include <FreeDesktop/FreeDesktopGuidance.h>

#include <QProcessEnvironment>

namespace tilewright {

/// Leads the user to a session in which windows can be moved: says what this one lacks, and offers
/// the desktop's own settings where they have a choice that helps. Main thread only.
class X11Guidance final : public FreeDesktopGuidance {
    Q_OBJECT

public:
    using Step = GuidanceStep;

    /// What the user is told of something that is lacking; with `settings` there are such settings.
    [[nodiscard]] static Step stepFor(X11Trust::Lack lack, bool settings = false);

    /// The program in which this desktop's users choose their window manager, as found in the
    /// environment; empty where there is none.
    [[nodiscard]] static QString windowManagerSettings(const QProcessEnvironment& environment);

    /// The first three have to outlive this. Programs are found in the environment, get it, and
    /// live on after this; `bringForward` is called with the window on the display.
    X11Guidance(X11Trust& trust, X11WindowManagerWatch& windowManager,
                UserNotifications& notifications, BringForward bringForward,
                const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());
    ~X11Guidance() override;

protected:
    [[nodiscard]] Step step() const override;
    void act() override;

private:
    const X11Trust& trust_;
    const QProcessEnvironment environment_;
};

} // namespace tilewright
