#include "GnomeSession.h"

#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <Waiting.h>
#include <csignal>
#include <gtest/gtest.h>
#include <stdexcept>

namespace tilewright::testing {

namespace {

/// A whole desktop has more to do than what is waited for elsewhere.
constexpr std::chrono::seconds startPatience{60};

QString sessionManager() {
    return QStringLiteral("org.gnome.SessionManager");
}

QString windowScript(const QString& quotedTitle, const QString& rest) {
    return QStringLiteral("(() => { const w = global.get_window_actors().map(a => a.meta_window)"
                          ".find(m => m.get_title() === %1); %2 })()")
        .arg(quotedTitle, rest);
}

} // namespace

GnomeSession::GnomeSession(const QString& believedProgram, int displays, CompanionAtStart companion,
                           const QString& dataFolders)
    : CompositorSession(QStringLiteral("GNOME"))
    , displays_(displays)
    , uuid_(QString::fromLatin1(companion == CompanionAtStart::isPackaged ? packagedUuid
                                                                          : companionUuid)) {
    const bool isThere = companion != CompanionAtStart::isNowhere;
    if (!dataFolders.isEmpty())
        set("XDG_DATA_DIRS", dataFolders);
    writeSettings(isThere);
    if (companion == CompanionAtStart::runs)
        installCompanion(believedProgram);
    if (!startBuses() || !startShell())
        throw std::runtime_error("no shell came up" + describe());
    waitUntilItRests();
    EXPECT_TRUE(waitUntil([&] { return isCompanionActive() == isThere; })) << describe();
}

void GnomeSession::logInAgain() {
    setInput(nullptr);
    compositor().signal(SIGTERM);
    EXPECT_TRUE(compositor().waitForEnd());
    if (!startShell())
        throw std::runtime_error("no other shell came up" + describe());
    waitUntilItRests();
}

void GnomeSession::writeSettings(bool isEnabled) const {
    const QByteArray extensions = isEnabled ? "['" + uuid_.toLatin1() + "']" : QByteArray("@as []");
    // A plain ground, so that a picture says what lies on it.
    writeFile(home() + QStringLiteral("/.config/glib-2.0/settings/keyfile"),
              "[org/gnome/shell]\nenabled-extensions=" + extensions +
                  "\ndisable-user-extensions=false\nwelcome-dialog-last-shown-version='999'\n"
                  "[org/gnome/desktop/background]\npicture-options='none'\n"
                  "primary-color='#204060'\ncolor-shading-type='solid'\n"
                  "[org/gnome/desktop/session]\nidle-delay=uint32 0\n"
                  // The shell has things to say, and would say them over a title bar.
                  "[org/gnome/desktop/notifications]\nshow-banners=false\n");
}

QString GnomeSession::companionFolder() const {
    return home() + QStringLiteral("/.local/share/gnome-shell/extensions/") + uuid_;
}

void GnomeSession::installCompanion(const QString& believedProgram) {
    Subprocess& assembly =
        start(QStringLiteral(TILEWRIGHT_CMAKE),
              {QStringLiteral("-DOUTPUT=") + companionFolder(), QStringLiteral("-DUUID=") + uuid_,
               QStringLiteral("-DPROGRAM=") + believedProgram, QStringLiteral("-DVERSION=0"),
               QStringLiteral("-P"), QStringLiteral(TILEWRIGHT_COMPANION_ASSEMBLY)});
    EXPECT_TRUE(assembly.waitForEnd());
    EXPECT_EQ(assembly.exitCode(), 0) << describe();
}

bool GnomeSession::startShell() {
    QStringList arguments{QStringLiteral("--headless"), QStringLiteral("--wayland"),
                          QStringLiteral("--unsafe-mode"), QStringLiteral("--wayland-display"),
                          socketName()};
    for (int number = 0; number < displays_; ++number)
        arguments += {QStringLiteral("--virtual-monitor"), QStringLiteral("1920x1080")};
    if (!startCompositor(QStringLiteral("gnome-shell"), arguments))
        return false;
    return waitUntil(
        [&] {
            const auto* names = bus().interface();
            return names->isServiceRegistered(QStringLiteral("org.gnome.Shell")) &&
                   names->isServiceRegistered(QStringLiteral("org.gnome.Mutter.RemoteDesktop")) &&
                   // Newer shells own their name before anything is there to be called.
                   evaluate(QStringLiteral("0")).type() == QDBusMessage::ReplyMessage;
        },
        startPatience);
}

void GnomeSession::waitUntilItRests() {
    // A pointer that begins in the corner opens the overview.
    auto input = std::make_unique<GnomeInput>(
        bus(),
        [this] {
            const QJsonArray at = ask(QStringLiteral("global.get_pointer()")).toArray();
            return QPoint(at[0].toInt(), at[1].toInt());
        },
        [this](QPoint at) { return unitsPerPoint(at); });
    input_ = input.get();
    setInput(std::move(input));
    EXPECT_TRUE(
        waitUntil([&] { return !ask(QStringLiteral("Main.layoutManager._startingUp")).toBool(); },
                  startPatience))
        << describe();
    tell(QStringLiteral("Main.overview.hide()"));
    EXPECT_TRUE(waitUntil([&] { return !ask(QStringLiteral("Main.overview.visible")).toBool(); }));
    useInput({1700, 1000});
}

QDBusMessage GnomeSession::evaluate(const QString& script) const {
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Shell"), QStringLiteral("/org/gnome/Shell"),
        QStringLiteral("org.gnome.Shell"), QStringLiteral("Eval"));
    message.setArguments({script});
    return bus().call(message);
}

QJsonValue GnomeSession::ask(const QString& script) {
    const QDBusMessage answer = evaluate(script);
    const QVariantList values = answer.arguments();
    if (answer.type() != QDBusMessage::ReplyMessage || !values.value(0).toBool()) {
        ADD_FAILURE() << script.toStdString() << ": " << answer.errorMessage().toStdString()
                      << values.value(1).toString().toStdString();
        return {};
    }
    const QByteArray array = '[' + values.value(1).toString().toUtf8() + ']';
    return QJsonDocument::fromJson(array).array().first();
}

std::map<QString, QString> GnomeSession::xServer() {
    std::map<QString, QString> environment;
    for (const QString& variable : {QStringLiteral("DISPLAY"), QStringLiteral("XAUTHORITY")})
        environment[variable] =
            ask(QStringLiteral("imports.gi.GLib.getenv('%1')").arg(variable)).toString();
    return environment;
}

QRect GnomeSession::frame(const QString& title) {
    return toRect(ask(windowScript(quoted(title),
                                   QStringLiteral("if (!w) return []; const r = w.get_frame_rect();"
                                                  "return [r.x, r.y, r.width, r.height];"))));
}

void GnomeSession::place(const QString& title, QRect area) {
    const QString script =
        windowScript(quoted(title), QStringLiteral("w.move_resize_frame(false, %1, %2, %3, %4);"
                                                   "Main.activateWindow(w);")
                                        .arg(area.x())
                                        .arg(area.y())
                                        .arg(area.width())
                                        .arg(area.height()));
    constexpr std::chrono::milliseconds once{400};
    // A client that has only just shown does not hear it.
    EXPECT_TRUE(waitUntil([&] {
        tell(script);
        return waitUntil([&] { return frame(title) == area; }, once);
    })) << title.toStdString()
        << " has " << text(frame(title)) << " instead of " << text(area) << describe();
}

void GnomeSession::waitUntilShown() {
    tell(QStringLiteral("(() => { globalThis.isShown = false;"
                        "const id = global.stage.connect('after-paint', () => {"
                        "global.stage.disconnect(id); globalThis.isShown = true; });"
                        "global.stage.queue_redraw(); })()"));
    EXPECT_TRUE(waitUntil([&] { return ask(QStringLiteral("globalThis.isShown")).toBool(); }))
        << describe();
}

bool GnomeSession::isDragging() {
    return ask(QStringLiteral("global.display.get_grab_op ? global.display.get_grab_op() !== 0"
                              " : global.display.is_grabbed()"))
        .toBool();
}

QImage GnomeSession::picture() {
    const QString path = home() + QStringLiteral("/picture-%1.png").arg(++pictures_);
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Shell.Screenshot"), QStringLiteral("/org/gnome/Shell/Screenshot"),
        QStringLiteral("org.gnome.Shell.Screenshot"), QStringLiteral("Screenshot"));
    message.setArguments({false, false, path});
    const QDBusMessage answer = bus().call(message);
    EXPECT_TRUE(answer.arguments().value(0).toBool()) << answer.errorMessage().toStdString();
    QImage picture(path);
    picture.setDevicePixelRatio(picture.width() /
                                ask(QStringLiteral("global.stage.width")).toDouble());
    return picture;
}

void GnomeSession::startSessionManager() {
    writeFile(home() + QStringLiteral("/.config/gnome-session/sessions/none.session"),
              "[GNOME Session]\nName=None\nRequiredComponents=\n");
    const QString folder = QStringLiteral("/usr/libexec/");
    const QString service = folder + QStringLiteral("gnome-session-service");
    QStringList arguments{QStringLiteral("--session=none")};
    const bool isNewer = QFile::exists(service);
    if (!isNewer)
        arguments += QStringLiteral("--disable-acceleration-check");
    // What starts with the machine's own sessions is left out.
    start(isNewer ? service : folder + QStringLiteral("gnome-session-binary"), arguments,
          {{QStringLiteral("XDG_CONFIG_DIRS"), home() + QStringLiteral("/nothing")}});
    EXPECT_TRUE(waitUntil([&] { return bus().interface()->isServiceRegistered(sessionManager()); },
                          startPatience))
        << describe();
}

bool GnomeSession::isKeptAwake() const {
    constexpr quint32 goingIdle = 8;
    QDBusMessage call = QDBusMessage::createMethodCall(
        sessionManager(), QStringLiteral("/org/gnome/SessionManager"), sessionManager(),
        QStringLiteral("IsInhibited"));
    call << goingIdle;
    const QDBusMessage answer = bus().call(call);
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
    return answer.arguments().value(0).toBool();
}

void GnomeSession::setCompanionEnabled(bool enabled) {
    tell(QStringLiteral("Main.extensionManager.%1('%2')")
             .arg(enabled ? QStringLiteral("enableExtension") : QStringLiteral("disableExtension"),
                  uuid_));
    EXPECT_TRUE(waitUntil([&] { return isCompanionActive() == enabled; })) << describe();
}

QString GnomeSession::companionVersion() {
    return ask(QStringLiteral("Main.extensionManager.lookup('%1')?.metadata['version-name'] ?? ''")
                   .arg(uuid_))
        .toString();
}

void GnomeSession::lock() {
    tell(QStringLiteral("Main.sessionMode.pushMode('unlock-dialog')"));
    EXPECT_TRUE(waitUntil([&] { return !isCompanionActive(); })) << describe();
}

void GnomeSession::unlock() {
    tell(QStringLiteral("Main.sessionMode.popMode('unlock-dialog')"));
    EXPECT_TRUE(waitUntil([&] { return isCompanionActive(); })) << describe();
}

bool GnomeSession::isCompanionActive() {
    // 1 is what the shell has for "active" in all its versions.
    return ask(QStringLiteral("Main.extensionManager.lookup('%1')?.state === 1").arg(uuid_))
        .toBool();
}

void GnomeSession::tapScreen(QPoint at) {
    // By the shell's own means: newer ones give remote input a touch screen only beside a
    // recording, for which a service would have to be there.
    tell(QStringLiteral(R"((() => {
        const {Clutter, GLib} = imports.gi;
        const backend = Clutter.get_default_backend?.() ?? global.stage.get_context().get_backend();
        globalThis.touchScreen ??= backend.get_default_seat()
            .create_virtual_device(Clutter.InputDeviceType.TOUCHSCREEN_DEVICE);
        globalThis.isTouchTold = false;
        const told = () => { globalThis.isTouchTold = true; return false; };
        const seen = global.stage.connect('captured-event', (stage, event) => {
            if (event.type() === Clutter.EventType.TOUCH_BEGIN) {
                stage.disconnect(seen);
                GLib.idle_add(GLib.PRIORITY_LOW, told);
            }
            return Clutter.EVENT_PROPAGATE;
        });
        touchScreen.notify_touch_down(GLib.get_monotonic_time(), 0, %1, %2);
    })())")
             .arg(at.x())
             .arg(at.y()));
    // Lifted before clients are told of it, it would be lost on Qt's, and the next one, too.
    EXPECT_TRUE(waitUntil([&] { return ask(QStringLiteral("isTouchTold")).toBool(); }));
    tell(QStringLiteral("touchScreen.notify_touch_up(imports.gi.GLib.get_monotonic_time(), 0)"));
}

QRect GnomeSession::item() {
    return toRect(ask(
        QStringLiteral("(b => b ? [...b.get_transformed_position(), ...b.get_transformed_size()]"
                       " : [])(Main.panel.statusArea['%1']?.get_first_child())")
            .arg(uuid_)));
}

QRect GnomeSession::waitForItem() {
    QRect place;
    EXPECT_TRUE(waitUntil([&] {
        place = item();
        return place.width() > 10 && place.left() > 960 &&
               // It is as high as the bar once the bar has given it its room.
               place.height() == ask(QStringLiteral("Main.panel.height")).toInt();
    })) << "there is no item"
        << describe();
    return place;
}

} // namespace tilewright::testing
