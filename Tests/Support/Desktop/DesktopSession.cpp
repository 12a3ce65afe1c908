#include "DesktopSession.h"

#include "BareClient.h"
#include "ListeningSocket.h"
#include "Waiting.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {

struct Command {
    QString program;
    QStringList arguments;
    std::map<QString, QString> environment;
    bool bringsCompositor = false;
};

Command commandFor(WindowManagerKind kind, bool composited, const QString& home) {
    const QString software = QStringLiteral("LIBGL_ALWAYS_SOFTWARE");
    const QString one = QStringLiteral("1");
    switch (kind) {
    case WindowManagerKind::openbox:
        return {QStringLiteral("openbox"), {}, {}};
    case WindowManagerKind::xfwm4:
        return {QStringLiteral("xfwm4"),
                composited
                    ? QStringList{QStringLiteral("--compositor=on"), QStringLiteral("--vblank=off")}
                    : QStringList{QStringLiteral("--compositor=off")},
                {},
                true};
    case WindowManagerKind::kwin:
        return {QStringLiteral("kwin_x11"),
                {},
                {{software, one},
                 {QStringLiteral("KWIN_COMPOSE"),
                  composited ? QStringLiteral("O2") : QStringLiteral("N")}},
                true};
    case WindowManagerKind::marco:
        return {QStringLiteral("marco"),
                {composited ? QStringLiteral("--composite") : QStringLiteral("--no-composite")},
                {},
                true};
    case WindowManagerKind::metacity:
        return {QStringLiteral("metacity"),
                {composited ? QStringLiteral("--compositor=xrender")
                            : QStringLiteral("--no-composite")},
                {},
                true};
    case WindowManagerKind::mutter:
        return {QStringLiteral("mutter"), {QStringLiteral("--x11")}, {{software, one}}, true};
    case WindowManagerKind::muffin:
        return {QStringLiteral("muffin"), {}, {{software, one}}, true};
    case WindowManagerKind::icewm:
        return {QStringLiteral("icewm"), {}, {}};
    case WindowManagerKind::fluxbox:
        return {QStringLiteral("fluxbox"), {}, {}};
    case WindowManagerKind::jwm:
        return {QStringLiteral("jwm"), {}, {}};
    case WindowManagerKind::i3:
        return {
            QStringLiteral("i3"), {QStringLiteral("-c"), home + QStringLiteral("/i3.conf")}, {}};
    case WindowManagerKind::awesome:
        return {QStringLiteral("awesome"), {}, {}};
    case WindowManagerKind::pekwm:
        return {QStringLiteral("pekwm"), {}, {}};
    case WindowManagerKind::wmaker:
        // By itself it is watched by another process, which holds the whole server when it dies.
        return {QStringLiteral("wmaker"),
                {QStringLiteral("--no-dock"), QStringLiteral("--no-clip"),
                 QStringLiteral("--no-drawer"), QStringLiteral("--no-autolaunch"),
                 QStringLiteral("--for-real")},
                {}};
    }
    return {};
}

} // namespace

const char* name(WindowManagerKind kind) {
    switch (kind) {
    case WindowManagerKind::openbox:
        return "openbox";
    case WindowManagerKind::xfwm4:
        return "xfwm4";
    case WindowManagerKind::kwin:
        return "kwin";
    case WindowManagerKind::marco:
        return "marco";
    case WindowManagerKind::metacity:
        return "metacity";
    case WindowManagerKind::mutter:
        return "mutter";
    case WindowManagerKind::muffin:
        return "muffin";
    case WindowManagerKind::icewm:
        return "icewm";
    case WindowManagerKind::fluxbox:
        return "fluxbox";
    case WindowManagerKind::jwm:
        return "jwm";
    case WindowManagerKind::i3:
        return "i3";
    case WindowManagerKind::awesome:
        return "awesome";
    case WindowManagerKind::pekwm:
        return "pekwm";
    case WindowManagerKind::wmaker:
        return "wmaker";
    }
    return "";
}

DesktopSession::DesktopSession(std::unique_ptr<XServer> server)
    : server_(std::move(server)) {
    if (!server_) {
        ADD_FAILURE() << "the X server did not start";
        return;
    }
    setUpEnvironment();
    if (!startBus())
        ADD_FAILURE() << "the session bus did not start";
    inspector_ = std::make_unique<XInspector>(server_->display());
    input_ = std::make_unique<XInputInjector>(server_->display());
    EXPECT_TRUE(inspector_->isConnected());
}

DesktopSession::~DesktopSession() {
    home_.endPrograms();
    compositor_.stop();
    windowManager_.stop();
    input_.reset();
    inspector_.reset();
    bus_.stop();
}

std::string DesktopSession::describe() {
    std::string text = "\n" + inspector_->describe();
    text += windowManager_.isRunning() ? "the window manager runs" : "no window manager runs";
    text += compositor_.isRunning() ? ", picom runs\n" : "\n";
    return text + home_.lastPrinted();
}

void DesktopSession::setUpEnvironment() {
    home_.set("DISPLAY", server_->display());
    home_.set("XDG_SESSION_TYPE", QStringLiteral("x11"));
    home_.set("QT_QPA_PLATFORM", QStringLiteral("xcb"));
    writeWindowManagerConfiguration();
}

void DesktopSession::writeWindowManagerConfiguration() const {
    const QString home = this->home();
    writeFile(home + QStringLiteral("/i3.conf"),
              "# i3 config file (v4)\nfor_window [all] floating enable\n"
              "default_floating_border normal\nfocus_follows_mouse no\n");
    // Stays on its desktop when a drag rests at the screen's edge.
    QFile openbox(QStringLiteral("/etc/xdg/openbox/rc.xml"));
    if (openbox.open(QIODevice::ReadOnly))
        writeFile(home + QStringLiteral("/.config/openbox/rc.xml"),
                  openbox.readAll().replace("<screenEdgeWarpTime>400</screenEdgeWarpTime>",
                                            "<screenEdgeWarpTime>0</screenEdgeWarpTime>"));
    // Asks nothing at its first start.
    writeFile(home + QStringLiteral("/.fluxbox/init"),
              "session.screen0.toolbar.visible: true\nsession.screen0.workspacewarping: false\n"
              "session.screen0.opaqueMove: true\n"
              "session.configVersion: 13\n");
    // Its own keys take Control with the mouse on a title bar for the gathering of windows into
    // tabs, and it holds the whole server meanwhile.
    writeFile(home + QStringLiteral("/.fluxbox/keys"),
              "OnTitlebar Mouse1 :MacroCmd {Raise} {Focus} {ActivateTab}\n"
              "OnTitlebar Move1 :StartMoving\n");
    // No wallpaper: where it finds no program to draw one, it says so in a window of its own.
    writeFile(home + QStringLiteral("/.fluxbox/overlay"), "background: none\n");
    // Stays on its desktop, as openbox does.
    QFile pekwm(QStringLiteral("/etc/pekwm/config"));
    if (pekwm.open(QIODevice::ReadOnly))
        writeFile(home + QStringLiteral("/.pekwm/config"),
                  pekwm.readAll() + "\nScreen { EdgeSize = \"0 0 0 0\" }\n");
    // A press on its desktop opens a menu by which the session can be ended.
    QFile jwm(QStringLiteral("/etc/jwm/system.jwmrc"));
    if (jwm.open(QIODevice::ReadOnly))
        writeFile(home + QStringLiteral("/.jwmrc"),
                  jwm.readAll().replace("<RootMenu onroot=\"12\">", "<RootMenu onroot=\"9\">"));
    // A press on its desktop draws a rectangle with the whole server held.
    writeFile(home + QStringLiteral("/GNUstep/Defaults/WindowMaker"),
              "{ DisableWSMouseActions = YES; }\n");
    writeFile(home + QStringLiteral("/.config/glib-2.0/settings/keyfile"),
              // The shell's own key freezes the keyboard until the shell has looked at it; a button
              // pressed meanwhile, and mutter, with no shell around it, forgets to thaw it.
              "[org/gnome/mutter]\nedge-tiling=true\noverlay-key=''\n"
              "[org/cinnamon/muffin]\nedge-tiling=true\noverlay-key=''\n"
              "[org/mate/Marco/general]\nallow-tiling=true\n");
}

bool DesktopSession::startBus() {
    const QString socket = home() + QStringLiteral("/run/bus");
    busAddress_ = QStringLiteral("unix:path=") + socket;
    home_.set("DBUS_SESSION_BUS_ADDRESS", busAddress_);
    const QStringList arguments{QStringLiteral("--session"), QStringLiteral("--nofork"),
                                QStringLiteral("--nopidfile"),
                                QStringLiteral("--address=") + busAddress_};
    return bus_.start(QStringLiteral("dbus-daemon"), arguments, home_.environment(), logFile()) &&
           waitUntil([&] { return isListenedAt(socket); });
}

bool DesktopSession::startWindowManager(WindowManagerKind kind, Compositing compositing) {
    killWindowManager();
    stopCompositor();
    const bool composited = compositing == Compositing::on;
    const Command command = commandFor(kind, composited, home());
    QProcessEnvironment environment = home_.environment();
    for (const auto& [key, value] : command.environment)
        environment.insert(key, value);
    windowManagerKind_ = kind;
    // Some start services of their desktop first, one after the other.
    constexpr std::chrono::seconds longEnough(60);
    const bool isUp =
        windowManager_.start(command.program, command.arguments, environment, logFile()) &&
        waitUntil([&] { return inspector_->hasWindowManager(); }, longEnough);
    EXPECT_TRUE(isUp) << name(kind) << " did not come up";
    if (isUp && kind == WindowManagerKind::wmaker) {
        // A window that comes and goes while it looks around at its start is its end.
        EXPECT_TRUE(waitUntil([&] {
            return !inspector_->property(inspector_->root(), "_NET_CURRENT_DESKTOP").empty();
        }));
    }
    // Some lose a window that shows between their first word and their first look around.
    if (isUp) {
        // Its connection stays: the next one would get its numbers, and a window of the same number
        // made before the window manager has looked after the end of this one would get its frame.
        BareClientTraits trial;
        trial.isTrial = true;
        firstWindow_ = std::make_unique<BareClient>(display(), QRect(0, 0, 60, 60), trial);
        firstWindow_->destroy();
    }
    if (isUp && kind == WindowManagerKind::icewm) {
        // Its task bar comes up after it, and pushes windows about when it does.
        EXPECT_TRUE(waitUntil([&] {
            const auto area = inspector_->property(inspector_->root(), "_NET_WORKAREA");
            return area.size() >= 4 && int(area[3]) < inspector_->screenSize().height();
        })) << "icewm's task bar did not come up";
    }
    if (!isUp || !composited)
        return isUp;
    if (!command.bringsCompositor)
        return startCompositor();
    const bool blends = waitUntil([&] { return inspector_->hasCompositor(); });
    EXPECT_TRUE(blends) << name(kind) << " does not composite";
    return blends;
}

void DesktopSession::killWindowManager() {
    if (!windowManager_.isRunning())
        return;
    windowManager_.stop();
    EXPECT_TRUE(waitUntil([&] { return !inspector_->hasWindowManager(); }));
}

bool DesktopSession::wakeWindowManager() {
    if (windowManagerKind_ != WindowManagerKind::pekwm)
        return false;
    xcb_client_message_event_t nothing{};
    nothing.response_type = XCB_CLIENT_MESSAGE;
    nothing.format = 32;
    nothing.window = inspector_->root();
    nothing.type = inspector_->atom("_TILEWRIGHT_TEST_NOTHING");
    xcb_send_event(inspector_->connection(), 0, inspector_->root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&nothing));
    xcb_flush(inspector_->connection());
    return true;
}

bool DesktopSession::startCompositor() {
    const QStringList arguments{QStringLiteral("--backend"), QStringLiteral("xrender"),
                                QStringLiteral("--config"), QStringLiteral("/dev/null")};
    const bool isUp =
        compositor_.start(QStringLiteral("picom"), arguments, home_.environment(), logFile()) &&
        waitUntil([&] { return inspector_->hasCompositor(); });
    EXPECT_TRUE(isUp) << "picom did not come up";
    return isUp;
}

void DesktopSession::stopCompositor() {
    if (!compositor_.isRunning())
        return;
    compositor_.stop();
    EXPECT_TRUE(waitUntil([&] { return !inspector_->hasCompositor(); }));
}

} // namespace tilewright::testing
