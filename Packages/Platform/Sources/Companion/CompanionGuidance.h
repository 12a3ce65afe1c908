#pragma once

#include "CompanionGuidanceWindow.h"

#include <FreeDesktop/FreeDesktopUserNotifications.h>

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

namespace tilewright {

/// Leads the user to a companion that runs: says what is missing by a notification, and shows the
/// way in a window. Each desktop knows the steps of its own. Main thread only.
class CompanionGuidance : public QObject {
    Q_OBJECT

public:
    /// The notifications have to outlive this. `bringForward` is called with the window on the
    /// display.
    CompanionGuidance(FreeDesktopUserNotifications& notifications,
                      std::function<void()> bringForward);
    ~CompanionGuidance() override;

    /// Tells by a notification what is missing; it leads to the window.
    void notify();
    /// Opens the window, or brings the open one forward.
    void show();
    /// The window while it is open; else null.
    [[nodiscard]] CompanionGuidanceWindow* window() const { return window_.get(); }

protected:
    using Step = CompanionGuidanceStep;

    /// The step that comes next now.
    [[nodiscard]] virtual Step step() const = 0;
    /// Asks anew for what nobody tells by himself.
    virtual void lookAgain() = 0;
    /// Does what the step offers.
    virtual void act() = 0;

    /// The step of one who has taken all of them.
    [[nodiscard]] static Step lastStep();
    /// A path as users write it, which may be broken after each of its folders.
    [[nodiscard]] static QString forReading(QString path);
    /// The step may be another one by now.
    void update();

private:
    FreeDesktopUserNotifications& notifications_;
    const std::function<void()> bringForward_;
    std::unique_ptr<CompanionGuidanceWindow> window_;
};

} // namespace tilewright
