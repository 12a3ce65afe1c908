#include "PlasmaPlatform.h"

#include "KWinCompanion.h"
#include "PlasmaGuidance.h"

#include <Companion/CompanionAccessibility.h>
#include <Companion/CompanionBus.h>
#include <Companion/CompanionEventMonitors.h>
#include <Companion/CompanionInstanceActivation.h>
#include <Companion/CompanionPanelSurface.h>
#include <Companion/CompanionPointer.h>
#include <Companion/CompanionWorkspace.h>
#include <FreeDesktop/FreeDesktopApplicationSupport.h>
#include <FreeDesktop/FreeDesktopKeyNames.h>
#include <FreeDesktop/FreeDesktopStatusItem.h>
#include <FreeDesktop/FreeDesktopUserDefaults.h>
#include <FreeDesktop/FreeDesktopUserNotifications.h>
#include <FreeDesktop/InhibitingPowerAssertions.h>
#include <FreeDesktop/MessageBus.h>
#include <FreeDesktop/PortalAppearance.h>
#include <FreeDesktop/WaylandSocket.h>
#include <LayerShell/LayerShellOverlaySurface.h>
#include <LayerShell/WaylandKeyStates.h>
#include <Platform/QtMainLoop.h>

#include <QProcessEnvironment>
#include <QRectF>
#include <optional>

namespace tilewright {

namespace {

/// After so long KWin has seen an entry that was just installed.
constexpr std::chrono::seconds untilEntryIsSeen{4};

} // namespace

/// In the order in which they need each other.
struct PlasmaPlatform::Parts {
    QtMainLoop mainLoop;
    FreeDesktopUserDefaults userDefaults;
    FreeDesktopApplicationSupport applicationSupport;
    FreeDesktopKeyNames keyNames;
    MessageBus sessionBus{mainLoop, MessageBus::Kind::session};
    MessageBus systemBus{mainLoop, MessageBus::Kind::system};
    FreeDesktopUserNotifications userNotifications{sessionBus};
    InhibitingPowerAssertions powerAssertions{mainLoop, nullptr, sessionBus, systemBus};
    PortalAppearance appearance{sessionBus};
    WaylandConnection wayland{mainLoop,
                              waylandSocketPath(QProcessEnvironment::systemEnvironment())};
    WaylandOutputs outputs{wayland};
    WaylandKeyStates keyStates{wayland};

    CompanionState state;
    CompanionOutbox outbox;
    CompanionScreens screens{state};
    CompanionPointer pointer{state, screens};
    CompanionEventMonitors eventMonitors{state};
    KWinCompanion companion{sessionBus};
    PlasmaGuidance guidance{state, companion, userNotifications,
                            [this] { workspace.activateThisApplication(); },
                            [this] { askForKeysLater(); }};
    CompanionAccessibility accessibility{state, screens, outbox, mainLoop,
                                         [this] { guidance.notify(); }};
    CompanionWorkspace workspace{state, outbox, [this] { guidance.show(); }};
    CompanionInstanceActivation instanceActivation{
        qEnvironmentVariable("WAYLAND_DISPLAY"), sessionBus.connection(), state, outbox, mainLoop};
    std::optional<FreeDesktopStatusItem> statusItem;
    ScopedTimer askingForKeys;
    /// Last, so that nothing is told to what is not there yet, or no longer.
    CompanionBus bus{mainLoop, sessionBus, outbox, KWinCompanion::compositorName(),
                     [this](const QString& commands) { companion.carry(commands); }};

    Parts();
    [[nodiscard]] PlatformServices services();
    void takeKeys();
    void askForKeysLater();
    [[nodiscard]] const WaylandOutput* outputOf(const Screen& screen) const;
};

PlasmaPlatform::Parts::Parts() {
    QObject::connect(&bus, &CompanionBus::told, &state, &CompanionState::take);
    QObject::connect(&bus, &CompanionBus::overrun, &state, &CompanionState::cancelDrag);
    QObject::connect(&bus, &CompanionBus::lost, &state, [this] {
        outbox.clear();
        state.lose();
        // Another one may have come by now, at the same socket.
        wayland.retry();
    });
    QObject::connect(&keyStates, &WaylandKeyStates::offerChanged, &state, [this] { takeKeys(); });
    QObject::connect(&keyStates, &WaylandKeyStates::flagsChanged, &state, [this] { takeKeys(); });
    takeKeys();
}

void PlasmaPlatform::Parts::takeKeys() {
    state.setKeys(keyStates.isOffered() ? std::optional(keyStates.flags()) : std::nullopt);
}

void PlasmaPlatform::Parts::askForKeysLater() {
    // KWin decides once for each connection what it lets it see.
    askingForKeys = ScopedTimer(mainLoop.scheduleOnce(untilEntryIsSeen, [this] {
        if (!keyStates.isOffered())
            wayland.reconnect();
    }));
}

const WaylandOutput* PlasmaPlatform::Parts::outputOf(const Screen& screen) const {
    const CompanionRect frame = screens.coordinates().toCompanion(screen.frame());
    return outputs.at(QRectF(frame.x, frame.y, frame.width, frame.height).toRect());
}

PlatformServices PlasmaPlatform::Parts::services() {
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

PlasmaPlatform::PlasmaPlatform()
    : PlasmaPlatform(std::make_unique<Parts>()) {}
PlasmaPlatform::PlasmaPlatform(std::unique_ptr<Parts> parts)
    : Platform(parts->services())
    , parts_(std::move(parts)) {}
PlasmaPlatform::~PlasmaPlatform() = default;

StatusItem& PlasmaPlatform::statusItem() {
    if (!parts_->statusItem) {
        const auto place = [&screens = parts_->screens](NativePixel pixel) {
            return screens.coordinates().toAppKit(
                CompanionPoint{static_cast<double>(pixel.x), static_cast<double>(pixel.y)});
        };
        parts_->statusItem.emplace(parts_->screens, place, parts_->mainLoop, parts_->sessionBus);
    }
    return *parts_->statusItem;
}

std::unique_ptr<OverlaySurface>
PlasmaPlatform::makeOverlaySurface(std::shared_ptr<OverlayView> view) {
    auto surface = std::make_unique<LayerShellOverlaySurface>(
        parts_->wayland, parts_->outputs,
        [parts = parts_.get()](const Screen& screen) { return parts->outputOf(screen); },
        parts_->mainLoop, std::move(view));
    surface->prepareAtDrags(parts_->eventMonitors, parts_->screens, parts_->pointer);
    return surface;
}

std::unique_ptr<PanelSurface>
PlasmaPlatform::makePanelSurface(PanelSurface::ViewFactory makeView,
                                 std::unique_ptr<PanelChrome> chrome) {
    return std::make_unique<CompanionPanelSurface>(parts_->state, parts_->screens, parts_->pointer,
                                                   parts_->outbox, parts_->mainLoop,
                                                   std::move(makeView), std::move(chrome));
}

} // namespace tilewright
