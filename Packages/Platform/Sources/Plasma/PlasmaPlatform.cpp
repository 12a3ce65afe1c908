#include "PlasmaPlatform.h"

#include "KWinCompanion.h"
#include "PlasmaGuidance.h"

#include <Companion/CompanionDesktop.h>
#include <FreeDesktop/FreeDesktopStatusItem.h>
#include <FreeDesktop/WaylandSocket.h>
#include <LayerShell/LayerShellOverlaySurface.h>
#include <LayerShell/WaylandKeyStates.h>

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
    CompanionDesktop desktop{[this] { guidance.notify(); }, [this] { guidance.show(); }};
    WaylandConnection wayland{desktop.mainLoop,
                              waylandSocketPath(QProcessEnvironment::systemEnvironment())};
    WaylandOutputs outputs{wayland};
    WaylandKeyStates keyStates{wayland};
    KWinCompanion companion{desktop.sessionBus};
    PlasmaGuidance guidance{desktop.state, companion, desktop.userNotifications,
                            [this](QWindow& window) { desktop.workspace.bringForward(window); },
                            [this] { askForKeysLater(); }};
    std::optional<FreeDesktopStatusItem> statusItem;
    ScopedTimer askingForKeys;
    /// Last, so that nothing is told to what is not there yet, or no longer.
    CompanionBus bus{desktop.mainLoop, desktop.sessionBus, desktop.outbox,
                     KWinCompanion::compositorName(),
                     [this](const QString& commands) { companion.carry(commands); }};

    Parts();
    void takeKeys();
    void askForKeysLater();
    [[nodiscard]] const WaylandOutput* outputOf(const Screen& screen) const;
};

PlasmaPlatform::Parts::Parts() {
    desktop.listenTo(bus);
    // Another one may have come by now, at the same socket.
    QObject::connect(&bus, &CompanionBus::lost, &wayland, &WaylandConnection::retry);
    // KWin has unloaded the former one then.
    QObject::connect(&companion, &KWinCompanion::changed, &desktop.state, [this] {
        if (companion.state() == KWinCompanion::State::refused)
            desktop.lose();
    });
    QObject::connect(&keyStates, &WaylandKeyStates::offerChanged, &desktop.state,
                     [this] { takeKeys(); });
    QObject::connect(&keyStates, &WaylandKeyStates::flagsChanged, &desktop.state,
                     [this] { takeKeys(); });
    takeKeys();
}

void PlasmaPlatform::Parts::takeKeys() {
    desktop.state.setKeys(keyStates.isOffered() ? std::optional(keyStates.flags()) : std::nullopt);
}

void PlasmaPlatform::Parts::askForKeysLater() {
    // KWin decides once for each connection what it lets it see.
    askingForKeys = ScopedTimer(desktop.mainLoop.scheduleOnce(untilEntryIsSeen, [this] {
        if (!keyStates.isOffered())
            wayland.reconnect();
    }));
}

const WaylandOutput* PlasmaPlatform::Parts::outputOf(const Screen& screen) const {
    const CompanionRect frame = desktop.screens.coordinates().toCompanion(screen.frame());
    return outputs.at(QRectF(frame.x, frame.y, frame.width, frame.height).toRect());
}

PlasmaPlatform::PlasmaPlatform()
    : PlasmaPlatform(std::make_unique<Parts>()) {}
PlasmaPlatform::PlasmaPlatform(std::unique_ptr<Parts> parts)
    : Platform(parts->desktop.services())
    , parts_(std::move(parts)) {}
PlasmaPlatform::~PlasmaPlatform() = default;

StatusItem& PlasmaPlatform::statusItem() {
    CompanionDesktop& desktop = parts_->desktop;
    if (!parts_->statusItem) {
        const auto place = [&screens = desktop.screens](NativePixel pixel) {
            return screens.coordinates().toAppKit(
                CompanionPoint{static_cast<double>(pixel.x), static_cast<double>(pixel.y)});
        };
        parts_->statusItem.emplace(desktop.screens, place, desktop.mainLoop, desktop.sessionBus);
        // Who clicks has the pointer there: no companion tells of it, and what it told at the last
        // drag may have been on another display.
        QObject::connect(&*parts_->statusItem, &StatusItem::activated, &desktop.state,
                         [&desktop](const std::optional<AppKitRect>& item) {
                             if (!item)
                                 return;
                             const CompanionRect unit =
                                 desktop.screens.coordinates().toCompanion(*item);
                             desktop.state.notePointer({unit.x, unit.y});
                         });
    }
    return *parts_->statusItem;
}

std::unique_ptr<OverlaySurface>
PlasmaPlatform::makeOverlaySurface(std::shared_ptr<OverlayView> view) {
    CompanionDesktop& desktop = parts_->desktop;
    auto surface = std::make_unique<LayerShellOverlaySurface>(
        parts_->wayland, parts_->outputs,
        [parts = parts_.get()](const Screen& screen) { return parts->outputOf(screen); },
        desktop.mainLoop, std::move(view));
    surface->prepareAtDrags(desktop.eventMonitors, desktop.screens, desktop.pointer);
    return surface;
}

std::unique_ptr<PanelSurface>
PlasmaPlatform::makePanelSurface(PanelSurface::ViewFactory makeView,
                                 std::unique_ptr<PanelChrome> chrome) {
    return parts_->desktop.makePanelSurface(std::move(makeView), std::move(chrome));
}

} // namespace tilewright
