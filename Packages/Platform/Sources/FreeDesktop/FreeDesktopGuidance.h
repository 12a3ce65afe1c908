#pragma once

#include "GuidanceWindow.h"
#include "UserNotifications.h"

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

class QWindow;

namespace tilewright {

/// Leads the user to a desktop on which windows can be moved: says what is missing by a
/// notification, and shows the way in a window. Each desktop knows the steps of its own. Main
/// thread only.
class FreeDesktopGuidance : public QObject {
    Q_OBJECT

public:
    /// Brings a window of this program before all others and gives it the focus.
    using BringForward = std::function<void(QWindow&)>;

    /// What the user is told where nothing lets a program move windows: which sessions do.
    [[nodiscard]] static QString sessionsThatHelp();

    /// The notifications have to outlive this. `bringForward` is called with the window on the
    /// display.
    FreeDesktopGuidance(UserNotifications& notifications, BringForward bringForward);
    ~FreeDesktopGuidance() override;

    /// Tells by a notification what is missing; it leads to the window.
    void notify();
    /// Opens the window, or brings the open one forward.
    void show();
    /// The window while it is open; else null.
    [[nodiscard]] GuidanceWindow* window() const { return window_.get(); }

protected:
    using Step = GuidanceStep;

    /// The step that comes next now.
    [[nodiscard]] virtual Step step() const = 0;
    /// Asks anew for what nobody tells by himself.
    virtual void lookAgain() {}
    /// Does what the step offers.
    virtual void act() {}

    /// The step of one who has taken all of them.
    [[nodiscard]] static Step lastStep();
    /// The step out of a session in which nothing lets a program move windows.
    [[nodiscard]] static Step otherSessionStep();
    /// A path as users write it, which may be broken after each of its folders.
    [[nodiscard]] static QString forReading(QString path);
    /// The step may be another one by now.
    void update();

private:
    UserNotifications& notifications_;
    const BringForward bringForward_;
    std::unique_ptr<GuidanceWindow> window_;
};

} // namespace tilewright
