#include "PlasmaGuidance.h"

#include <utility>

namespace tilewright {

PlasmaGuidance::Step PlasmaGuidance::stepFor(Obstacle obstacle, const QString& place) {
    switch (obstacle) {
    case Obstacle::none:
        return lastStep();
    case Obstacle::refusal:
        return {tr("KWin does not run the companion"),
                tr("On this desktop, Tilewright sees and moves windows with the help of a small "
                   "script inside KWin, which KWin has not taken. Logging out and in once may "
                   "help."),
                {}};
    case Obstacle::effectsMissing:
        if (!place.isEmpty())
            return {
                tr("The modifier keys cannot be seen"),
                tr("This version of Plasma shows them to effects of KWin alone. Four small "
                   "ones, which draw nothing, can be installed for you alone, in %1; delete "
                   "the folders there whose names begin with \"tilewright\" to remove them. KWin "
                   "finds them when you log in the next time.")
                    .arg(forReading(place)),
                tr("Install")};
        return {tr("The modifier keys cannot be seen"),
                tr("This version of Plasma shows them to effects of KWin alone. Four small ones, "
                   "which draw nothing, come with Tilewright's package. Install that, then log "
                   "out and in once."),
                {}};
    case Obstacle::effectsNotSeen:
        return {tr("Log out and in once"),
                tr("The effects that show Tilewright the modifier keys are installed. KWin finds "
                   "them when you log in the next time. Without hardware acceleration KWin runs no "
                   "effects; then windows cannot be snapped."),
                {}};
    case Obstacle::entryMissing:
        return {tr("The modifier keys cannot be seen"),
                tr("This version of Plasma tells them to programs whose entry among the "
                   "applications asks for it. One for this Tilewright, which shows in no menu, can "
                   "be installed for you alone: %1. Delete that file to remove it.")
                    .arg(forReading(place)),
                tr("Install")};
    case Obstacle::entryNotSeen:
        return {tr("The modifier keys cannot be seen"),
                tr("Tilewright has asked for them, and KWin does not tell them yet. Log out and in "
                   "once; if that does not help, this version of Plasma tells them to nobody."),
                {}};
    case Obstacle::silence:
        break;
    }
    return {tr("KWin does not answer"),
            tr("Tilewright sees and moves windows with the help of a small script inside KWin, "
               "which has not said anything yet."),
            {}};
}

PlasmaGuidance::PlasmaGuidance(CompanionState& state, KWinCompanion& companion,
                               UserNotifications& notifications, BringForward bringForward,
                               std::function<void()> askForKeys, KWinKeyFiles files)
    : FreeDesktopGuidance(notifications, std::move(bringForward))
    , state_(state)
    , companion_(companion)
    , askForKeys_(std::move(askForKeys))
    , files_(std::move(files)) {
    connect(&state_, &CompanionState::connectedChanged, this, &PlasmaGuidance::update);
    connect(&state_, &CompanionState::keySourceChanged, this, &PlasmaGuidance::update);
    connect(&companion_, &KWinCompanion::changed, this, &PlasmaGuidance::update);
}

PlasmaGuidance::~PlasmaGuidance() = default;

PlasmaGuidance::Obstacle PlasmaGuidance::obstacle() const {
    if (companion_.state() == KWinCompanion::State::refused)
        return Obstacle::refusal;
    if (!state_.isConnected())
        return Obstacle::silence;
    if (state_.hasKeys())
        return Obstacle::none;
    if (state_.shell() == u"5")
        return files_.areEffectsInstalled() ? Obstacle::effectsNotSeen : Obstacle::effectsMissing;
    return files_.isEntryInstalled() ? Obstacle::entryNotSeen : Obstacle::entryMissing;
}

PlasmaGuidance::Step PlasmaGuidance::step() const {
    const Obstacle obstacle = this->obstacle();
    if (obstacle == Obstacle::effectsMissing)
        return stepFor(obstacle,
                       files_.canEffectsBeInstalled() ? files_.effectsPlace() : QString());
    return stepFor(obstacle, files_.entryPlace());
}

void PlasmaGuidance::lookAgain() {
    if (obstacle() == Obstacle::none)
        return;
    // What was installed since is news that KWin does not tell by itself.
    companion_.reload();
    askForKeys_();
}

void PlasmaGuidance::act() {
    const Obstacle obstacle = this->obstacle();
    if (obstacle == Obstacle::effectsMissing && files_.installEffects())
        update();
    if (obstacle == Obstacle::entryMissing && files_.installEntry()) {
        update();
        askForKeys_();
    }
}

} // namespace tilewright
