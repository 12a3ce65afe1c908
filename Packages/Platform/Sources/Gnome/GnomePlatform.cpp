#include "GnomePlatform.h"

#include "GnomeExtension.h"
#include "GnomeGuidance.h"
#include "GnomeOverlaySurface.h"

#include <Companion/CompanionDesktop.h>
#include <Companion/CompanionStatusItem.h>

#include <optional>

namespace tilewright {

/// In the order in which they need each other.
struct GnomePlatform::Parts {
    CompanionDesktop desktop{[this] { guidance.notify(); }, [this] { guidance.show(); }};
    GnomeExtension extension{desktop.sessionBus, GnomeCompanionFiles::ofThisProgram(),
                             GnomeStartList::settingsProgram()};
    GnomeGuidance guidance{desktop.state, extension, desktop.userNotifications,
                           [this](QWindow& window) { desktop.workspace.bringForward(window); }};
    std::optional<CompanionStatusItem> statusItem;
    /// Last, so that nothing is told to what is not there yet, or no longer.
    CompanionBus bus{desktop.mainLoop, desktop.sessionBus, desktop.outbox,
                     GnomeExtension::shellName()};

    Parts();
};

GnomePlatform::Parts::Parts() {
    desktop.listenTo(bus);
    // The shell lives on when it stops its extension, as it does for the lock screen: what that one
    // has told is over, and there is nobody to say so but the shell.
    QObject::connect(&extension, &GnomeExtension::stopped, &desktop.state,
                     [this] { desktop.lose(); });
}

GnomePlatform::GnomePlatform()
    : GnomePlatform(std::make_unique<Parts>()) {}
GnomePlatform::GnomePlatform(std::unique_ptr<Parts> parts)
    : Platform(parts->desktop.services())
    , parts_(std::move(parts)) {}
GnomePlatform::~GnomePlatform() = default;

StatusItem& GnomePlatform::statusItem() {
    CompanionDesktop& desktop = parts_->desktop;
    if (!parts_->statusItem)
        parts_->statusItem.emplace(desktop.state, desktop.screens, desktop.outbox, desktop.mainLoop,
                                   desktop.sessionBus);
    return *parts_->statusItem;
}

std::unique_ptr<OverlaySurface>
GnomePlatform::makeOverlaySurface(std::shared_ptr<OverlayView> view) {
    CompanionDesktop& desktop = parts_->desktop;
    return std::make_unique<GnomeOverlaySurface>(desktop.state, desktop.screens, desktop.outbox,
                                                 std::move(view));
}

std::unique_ptr<PanelSurface> GnomePlatform::makePanelSurface(PanelSurface::ViewFactory makeView,
                                                              std::unique_ptr<PanelChrome> chrome) {
    return parts_->desktop.makePanelSurface(std::move(makeView), std::move(chrome));
}

} // namespace tilewright
