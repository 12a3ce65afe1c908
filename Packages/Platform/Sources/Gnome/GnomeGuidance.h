#pragma once

#include "GnomeExtension.h"

#include <Companion/CompanionState.h>
#include <FreeDesktop/FreeDesktopGuidance.h>

namespace tilewright {

/// Leads the user to the extension of GNOME Shell that runs as the companion. Main thread only.
class GnomeGuidance final : public FreeDesktopGuidance {
    Q_OBJECT

public:
    using Step = GuidanceStep;

    /// `place` is where the companion could be installed for the user; empty where it could not.
    [[nodiscard]] static Step stepFor(GnomeExtension::State state, bool isConnected,
                                      const QString& place = {});

    /// All of them have to outlive this. `bringForward` is called with the window on the display.
    GnomeGuidance(CompanionState& state, GnomeExtension& extension,
                  UserNotifications& notifications, BringForward bringForward);
    ~GnomeGuidance() override;

protected:
    [[nodiscard]] Step step() const override;
    void lookAgain() override;
    void act() override;

private:
    CompanionState& state_;
    GnomeExtension& extension_;
};

} // namespace tilewright
