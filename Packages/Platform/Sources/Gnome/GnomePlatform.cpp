#include "GnomePlatform.h"

#include "GnomeExtension.h"
#include "GnomeGuidance.h"
#include "GnomeOverlaySurface.h"

#include <Companion/CompanionAccessibility.h>
#include <Companion/CompanionBus.h>
#include <Companion/CompanionEventMonitors.h>
#include <Companion/CompanionInstanceActivation.h>
#include <Companion/CompanionPanelSurface.h>
#include <Companion/CompanionPointer.h>
#include <Companion/CompanionStatusItem.h>
#include <Companion/CompanionWorkspace.h>
#include <FreeDesktop/FreeDesktopApplicationSupport.h>
#include <FreeDesktop/FreeDesktopKeyNames.h>
#include <FreeDesktop/FreeDesktopUserDefaults.h>
#include <FreeDesktop/FreeDesktopUserNotifications.h>
#include <FreeDesktop/InhibitingPowerAssertions.h>
#include <FreeDesktop/MessageBus.h>
#include <FreeDesktop/PortalAppearance.h>
#include <Platform/QtMainLoop.h>

#include <optional>

namespace tilewright {

/// In the order in which they need each other.
struct GnomePlatform::Parts {
    QtMainLoop mainLoop;
    FreeDesktopUserDefaults userDefaults;
    FreeDesktopApplicationSupport applicationSupport;
    FreeDesktopKeyNames keyNames;
    MessageBus sessionBus{mainLoop, MessageBus::Kind::session};
    MessageBus systemBus{mainLoop, MessageBus::Kind::system};
    FreeDesktopUserNotifications userNotifications{sessionBus};
    InhibitingPowerAssertions powerAssertions{mainLoop, nullptr, sessionBus, systemBus};
    PortalAppearance appearance{sessionBus};

    CompanionState state;
    CompanionOutbox outbox;
    CompanionScreens screens{state};
    CompanionPointer pointer{state, screens};
    CompanionEventMonitors eventMonitors{state};
    GnomeExtension extension{sessionBus};
    GnomeGuidance guidance{state, extension, userNotifications,
                           [this] { workspace.activateThisApplication(); }};
    CompanionAccessibility accessibility{state, screens, outbox, mainLoop,
                                         [this] { guidance.notify(); }};
    CompanionWorkspace workspace{state, outbox, [this] { guidance.show(); }};
    CompanionInstanceActivation instanceActivation{
        qEnvironmentVariable("WAYLAND_DISPLAY"), sessionBus.connection(), state, outbox, mainLoop};
    std::optional<CompanionStatusItem> statusItem;
    /// Last, so that nothing is told to what is not there yet, or no longer.
    CompanionBus bus{mainLoop, sessionBus, outbox, GnomeExtension::shellName()};

    Parts();
    [[nodiscard]] PlatformServices services();
};

GnomePlatform::Parts::Parts() {
    QObject::connect(&bus, &CompanionBus::told, &state, &CompanionState::take);
    QObject::connect(&bus, &CompanionBus::overrun, &state, &CompanionState::cancelDrag);
    const auto lose = [this] {
        outbox.clear();
        state.lose();
    };
    QObject::connect(&bus, &CompanionBus::lost, &state, lose);
    // The shell lives on when it stops its extension, as it does for the lock screen: what that one
    // has told is over, and there is nobody to say so but the shell.
    QObject::connect(&extension, &GnomeExtension::stopped, &state, lose);
}

PlatformServices GnomePlatform::Parts::services() {
    return {.screens = screens,
            .pointer = pointer,
            .eventMonitors = eventMonitors,
            .accessibility = accessibility,
            .workspace = workspace,
            .appearance = appearance,
            .powerAssertions = powerAssertions,
            .userDefaults = userDefaults,
            .mainLoop = mainLoop,
            .applicationSupport = applicationSupport,
            .instanceActivation = instanceActivation,
            .keyNames = keyNames};
}

GnomePlatform::GnomePlatform()
    : GnomePlatform(std::make_unique<Parts>()) {}
GnomePlatform::GnomePlatform(std::unique_ptr<Parts> parts)
    : Platform(parts->services())
    , parts_(std::move(parts)) {}
GnomePlatform::~GnomePlatform() = default;

StatusItem& GnomePlatform::statusItem() {
    if (!parts_->statusItem)
        parts_->statusItem.emplace(parts_->state, parts_->screens, parts_->outbox, parts_->mainLoop,
                                   parts_->sessionBus);
    return *parts_->statusItem;
}

std::unique_ptr<OverlaySurface>
GnomePlatform::makeOverlaySurface(std::shared_ptr<OverlayView> view) {
    return std::make_unique<GnomeOverlaySurface>(parts_->state, parts_->screens, parts_->outbox,
                                                 std::move(view));
}

std::unique_ptr<PanelSurface> GnomePlatform::makePanelSurface(PanelSurface::ViewFactory makeView,
                                                              std::unique_ptr<PanelChrome> chrome) {
    return std::make_unique<CompanionPanelSurface>(parts_->state, parts_->screens, parts_->pointer,
                                                   parts_->outbox, parts_->mainLoop,
                                                   std::move(makeView), std::move(chrome));
}

} // namespace tilewright
