#pragma once

#include "KWinCompanion.h"
#include "KWinKeyFiles.h"

#include <Companion/CompanionState.h>
#include <FreeDesktop/FreeDesktopGuidance.h>

#include <functional>

namespace tilewright {

/// Leads the user to a companion that runs inside KWin, and to the keys. Main thread only.
class PlasmaGuidance final : public FreeDesktopGuidance {
    Q_OBJECT

public:
    using Step = GuidanceStep;

    /// What stands in the way.
    enum class Obstacle {
        none,
        /// KWin does not answer, or its companion has not introduced itself yet.
        silence,
        /// KWin does not take the companion.
        refusal,
        /// KWin 5 lacks the effects; so it does until it starts anew.
        effectsMissing,
        effectsNotSeen,
        /// KWin 6 has no entry that asks for the keys; or has one, and still does not tell.
        entryMissing,
        entryNotSeen,
    };

    /// `place` is where what is missing could be installed for the user; empty where it could not.
    [[nodiscard]] static Step stepFor(Obstacle obstacle, const QString& place = {});

    /// `askForKeys` asks the compositor anew for the keys, once it had the time to see a new entry.
    /// All the others have to outlive this; `bringForward` is called with the window on the
    /// display.
    PlasmaGuidance(CompanionState& state, KWinCompanion& companion,
                   UserNotifications& notifications, BringForward bringForward,
                   std::function<void()> askForKeys,
                   KWinKeyFiles files = KWinKeyFiles::ofThisProgram());
    ~PlasmaGuidance() override;

    [[nodiscard]] Obstacle obstacle() const;

protected:
    [[nodiscard]] Step step() const override;
    void lookAgain() override;
    void act() override;

private:
    CompanionState& state_;
    KWinCompanion& companion_;
    const std::function<void()> askForKeys_;
    const KWinKeyFiles files_;
};

} // namespace tilewright
