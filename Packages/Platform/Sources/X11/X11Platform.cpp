#include "X11Platform.h"

#include "X11Desktop.h"
#include "X11EventMonitors.h"
#include "X11InputBarrier.h"
#include "X11InstanceActivation.h"
#include "X11OverlaySurface.h"
#include "X11Qt.h"
#include "X11ScreenSaver.h"
#include "X11StaleNotices.h"
#include "X11SystemTray.h"

#include <FreeDesktop/FreeDesktopSession.h>
#include <FreeDesktop/FreeDesktopStatusItem.h>
#include <FreeDesktop/InhibitingPowerAssertions.h>
#include <FreeDesktop/WaylandSocket.h>
#include <LayerShell/LayerShellScreenSaver.h>
#include <Popup/PopupPanelSurface.h>

#include <QGuiApplication>
#include <QWindow>
#include <optional>

namespace tilewright {

/// In the order in which they need each other.
struct X11Platform::Parts : FreeDesktopSession {
    Parts(std::unique_ptr<X11Connection> opened, X11Session session)
        : connection(std::move(opened))
        , compositor(session == X11Session::besideWayland ? connectToCompositor() : nullptr)
        , screenSaver(makeScreenSaver())
        , desktop(*connection, mainLoop, sessionBus, userNotifications,
                  session == X11Session::besideWayland) {}

    std::unique_ptr<X11Connection> connection;
    X11InstanceActivation instanceActivation{*connection};
    /// The one beside which the X server is; null where the session is the server's own.
    std::unique_ptr<WaylandConnection> compositor;
    std::unique_ptr<ScreenSaver> screenSaver;
    InhibitingPowerAssertions powerAssertions{mainLoop, screenSaver.get(), sessionBus, systemBus};
    X11Desktop desktop;
    X11EventMonitors eventMonitors{*connection,
                                   desktop.pointer(),
                                   desktop.movedWindows(),
                                   desktop.frameSetter(),
                                   {x11qt::ownsWindow, x11qt::hasGrab, x11qt::windowsTakingInput}};
    X11InputBarrier inputBarrier{desktop.pointer(), mainLoop};
    X11SystemTray systemTray{*connection};
    std::optional<FreeDesktopStatusItem> statusItem;
    X11AwaitedReply answerBeforeForgetting;
    std::optional<X11StaleNotices> staleNotices;

    [[nodiscard]] PlatformServices services();
    void forgetSentTitles();

private:
    [[nodiscard]] std::unique_ptr<WaylandConnection> connectToCompositor();
    [[nodiscard]] std::unique_ptr<ScreenSaver> makeScreenSaver();
};

std::unique_ptr<WaylandConnection> X11Platform::Parts::connectToCompositor() {
    return std::make_unique<WaylandConnection>(
        mainLoop, waylandSocketPath(QProcessEnvironment::systemEnvironment()));
}

std::unique_ptr<ScreenSaver> X11Platform::Parts::makeScreenSaver() {
    // The server's own, beside a compositor, would agree to everything and blank nothing.
    if (compositor)
        return std::make_unique<LayerShellScreenSaver>(*compositor, mainLoop);
    return std::make_unique<X11ScreenSaver>(*connection);
}

PlatformServices X11Platform::Parts::services() {
    return {.screens = desktop.screens(),
            .pointer = desktop.pointer(),
            .eventMonitors = eventMonitors,
            .accessibility = desktop.accessibility(),
            .workspace = desktop.workspace(),
            .appearance = desktop.appearance(),
            .powerAssertions = powerAssertions,
            .userDefaults = userDefaults,
            .mainLoop = mainLoop,
            .applicationSupport = applicationSupport,
            .instanceActivation = instanceActivation,
            .keyNames = keyNames};
}

std::unique_ptr<X11Platform> X11Platform::open(X11Session session) {
    auto connection = X11Connection::open();
    if (!connection)
        return nullptr;
    return std::unique_ptr<X11Platform>(
        new X11Platform(std::make_unique<Parts>(std::move(connection), session)));
}

X11Platform::X11Platform(std::unique_ptr<Parts> parts)
    : Platform(parts->services())
    , parts_(std::move(parts)) {
    if (xcb_connection_t* qtConnection = x11qt::connection())
        qGuiApp->installNativeEventFilter(&parts_->staleNotices.emplace(qtConnection));
    // Every window of ours has a title and the focus once it is open.
    if (qGuiApp)
        QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, parts_->connection.get(),
                         [parts = parts_.get()] { parts->forgetSentTitles(); });
}

void X11Platform::Parts::forgetSentTitles() {
    if (answerBeforeForgetting.isAwaited())
        return;
    // A window manager may hold the server while it moves the window that it has just given the
    // focus: then the answer, and with it the wait, comes once it has let go.
    answerBeforeForgetting = connection->whenAnswered<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus(connection->xcb()), [](const auto& answer) {
            if (answer)
                x11qt::forgetSentTitles();
        });
}

X11Platform::~X11Platform() = default;

StatusItem& X11Platform::statusItem() {
    if (!parts_->statusItem) {
        const X11Screens& monitors = parts_->desktop.screens();
        parts_->statusItem.emplace(
            monitors,
            [&monitors](NativePixel pixel) { return monitors.coordinates().toAppKit(pixel); },
            parts_->mainLoop, parts_->sessionBus,
            FreeDesktopStatusItem::Display{parts_->desktop.pointer(), parts_->systemTray});
    }
    return *parts_->statusItem;
}

std::unique_ptr<OverlaySurface> X11Platform::makeOverlaySurface(std::shared_ptr<OverlayView> view) {
    return std::make_unique<X11OverlaySurface>(*parts_->connection, parts_->desktop.compositor(),
                                               parts_->desktop.screens(), parts_->eventMonitors,
                                               parts_->mainLoop, std::move(view));
}

std::unique_ptr<PanelSurface> X11Platform::makePanelSurface(PanelSurface::ViewFactory makeView,
                                                            std::unique_ptr<PanelChrome> chrome) {
    auto barrier = [&barrier = parts_->inputBarrier](std::function<void()> then) {
        barrier.whenPassed(std::move(then));
    };
    return std::make_unique<PopupPanelSurface>(*this, std::move(barrier), std::move(makeView),
                                               std::move(chrome));
}

} // namespace tilewright
