#pragma once

#include "GnomeExtension.h"

#include <Companion/CompanionState.h>
#include <FreeDesktop/FreeDesktopUserNotifications.h>

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

namespace tilewright {

class GnomeGuidanceWindow;

/// Leads the user to a companion that runs: says what is missing by a notification, and shows the
/// way in a window. Main thread only.
class GnomeGuidance final : public QObject {
    Q_OBJECT

public:
    /// A step of the way, as the user is told of it.
    struct Step {
        QString title;
        QString text;
        /// What a button offers to do; empty where the user can only do it elsewhere.
        QString action;

        friend bool operator==(const Step&, const Step&) = default;
    };

    /// `place` is where the companion could be installed for the user; empty where it could not.
    [[nodiscard]] static Step stepFor(GnomeExtension::State state, bool isConnected,
                                      const QString& place = {});

    /// All of them have to outlive this. `bringForward` is called with the window on the display.
    GnomeGuidance(CompanionState& state, GnomeExtension& extension,
                  FreeDesktopUserNotifications& notifications, std::function<void()> bringForward);
    ~GnomeGuidance() override;

    /// Tells by a notification what is missing; it leads to the window.
    void notify();
    /// Opens the window, or brings the open one forward.
    void show();
    /// The window while it is open; else null.
    [[nodiscard]] GnomeGuidanceWindow* window() const { return window_.get(); }

private:
    void update();
    void act();
    [[nodiscard]] Step step() const;

    CompanionState& state_;
    GnomeExtension& extension_;
    FreeDesktopUserNotifications& notifications_;
    const std::function<void()> bringForward_;
    std::unique_ptr<GnomeGuidanceWindow> window_;
};

} // namespace tilewright
