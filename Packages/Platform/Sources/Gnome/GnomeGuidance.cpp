#include "GnomeGuidance.h"

namespace tilewright {

GnomeGuidance::Step GnomeGuidance::stepFor(GnomeExtension::State state, bool isConnected,
                                           const QString& place) {
    using State = GnomeExtension::State;
    if (isConnected)
        return lastStep();
    switch (state) {
    case State::notInstalled:
        if (!place.isEmpty())
            return {tr("The companion is not installed"),
                    tr("On this desktop, Tilewright sees and moves windows with the help of a "
                       "small companion inside GNOME Shell. It can be installed for you alone, in "
                       "%1; delete that folder to remove it. GNOME Shell finds it when you log in "
                       "the next time.")
                        .arg(forReading(place)),
                    tr("Install")};
        return {tr("The companion is not installed"),
                tr("On this desktop, Tilewright sees and moves windows with the help of a small "
                   "companion inside GNOME Shell. It comes with Tilewright's package. Install "
                   "that, then log out and in once."),
                {}};
    case State::notSeen:
        return {tr("Log out and in once"),
                tr("Tilewright's companion for GNOME Shell is installed. The shell finds it when "
                   "you log in the next time."),
                {}};
    case State::off:
        return {tr("The companion is turned off"),
                tr("Tilewright sees and moves windows with the help of its companion inside GNOME "
                   "Shell. Turn it on here, or at any time in the Extensions app."),
                tr("Turn On")};
    case State::refused:
        return {tr("GNOME Shell does not run the companion"),
                tr("It is made for other versions of GNOME Shell, or has failed. The Extensions "
                   "app tells more; a newer Tilewright may help."),
                {}};
    case State::active:
        return {tr("The companion is running"),
                tr("It has not reached this Tilewright yet. If that does not change soon, the "
                   "companion belongs to another installation of Tilewright, or is older than "
                   "this one: log out and in once."),
                {}};
    case State::unknown:
        break;
    }
    return {tr("GNOME Shell does not answer"),
            tr("Tilewright's companion runs inside GNOME Shell, which has not said anything about "
               "it yet."),
            {}};
}

GnomeGuidance::GnomeGuidance(CompanionState& state, GnomeExtension& extension,
                             UserNotifications& notifications, BringForward bringForward)
    : FreeDesktopGuidance(notifications, std::move(bringForward))
    , state_(state)
    , extension_(extension) {
    connect(&state_, &CompanionState::connectedChanged, this, &GnomeGuidance::update);
    connect(&extension_, &GnomeExtension::changed, this, &GnomeGuidance::update);
}

GnomeGuidance::~GnomeGuidance() = default;

GnomeGuidance::Step GnomeGuidance::step() const {
    const GnomeCompanionFiles& files = extension_.files();
    return stepFor(extension_.state(), state_.isConnected(),
                   files.canBeInstalled() ? files.place() : QString());
}

void GnomeGuidance::lookAgain() {
    // What was put in its place since is news that the shell does not tell by itself.
    extension_.refresh();
}

void GnomeGuidance::act() {
    if (extension_.state() != GnomeExtension::State::notInstalled)
        extension_.turnOn();
    else if (extension_.files().install())
        extension_.refresh();
}

} // namespace tilewright
