#include "GnomeSession.h"

#include <DesktopSession.h>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <Repetition.h>
#include <Waiting.h>
#include <csignal>
#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {

/// A bus on which nothing is but what the session starts: no service comes by itself.
constexpr char busConfiguration[] = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path=%1</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*" eavesdrop="true"/>
<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>)";

/// The script's text of a JavaScript value.
QString quoted(const QString& text) {
    return QString::fromUtf8(QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact))
        .mid(1)
        .chopped(1);
}

QString windowScript(const QString& title, const QString& rest) {
    return QStringLiteral("(() => { const w = global.get_window_actors().map(a => a.meta_window)"
                          ".find(m => m.get_title() === %1); %2 })()")
        .arg(quoted(title), rest);
}

} // namespace

const char* name(GnomeClient client) {
    switch (client) {
    case GnomeClient::qt:
        return "Qt";
    case GnomeClient::gtk4:
        return "Gtk4";
    case GnomeClient::xwayland:
        return "Xwayland";
    }
    return "";
}

GnomeSession::GnomeSession(const QString& believedProgram)
    : witness_(QStringLiteral("gnome-witness-") + home_.path()) {
    setUpEnvironment();
    writeSettings();
    installCompanion(believedProgram);
    const bool isUp =
        startBus(systemBus_, QStringLiteral("system-bus"), "DBUS_SYSTEM_BUS_ADDRESS") &&
        startBus(sessionBus_, QStringLiteral("bus"), "DBUS_SESSION_BUS_ADDRESS") && startShell();
    EXPECT_TRUE(isUp) << describe();
    if (isUp)
        waitUntilItRests();
}

GnomeSession::~GnomeSession() {
    input_.reset();
    home_.endPrograms();
    QDBusConnection::disconnectFromBus(witness_);
    // Told to end, it takes the X server's lock file away with it.
    shell_.signal(SIGTERM);
    static_cast<void>(shell_.waitForEnd());
    shell_.stop();
    sessionBus_.stop();
    systemBus_.stop();
}

void GnomeSession::setUpEnvironment() {
    home_.set("XDG_SESSION_TYPE", QStringLiteral("wayland"));
    home_.set("XDG_CURRENT_DESKTOP", QStringLiteral("GNOME"));
    home_.set("LIBGL_ALWAYS_SOFTWARE", QStringLiteral("1"));
    home_.set("GTK_A11Y", QStringLiteral("none"));
}

void GnomeSession::writeSettings() const {
    // A plain ground, so that a picture says what lies on it.
    writeFile(home() + QStringLiteral("/.config/glib-2.0/settings/keyfile"),
              QByteArray("[org/gnome/shell]\nenabled-extensions=['") + companionUuid +
                  "']\ndisable-user-extensions=false\nwelcome-dialog-last-shown-version='999'\n"
                  "[org/gnome/desktop/background]\npicture-options='none'\n"
                  "primary-color='#204060'\ncolor-shading-type='solid'\n"
                  "[org/gnome/desktop/session]\nidle-delay=uint32 0\n"
                  // The shell has things to say, and would say them over a title bar.
                  "[org/gnome/desktop/notifications]\nshow-banners=false\n");
}

void GnomeSession::installCompanion(const QString& believedProgram) {
    const QString folder = home() + QStringLiteral("/.local/share/gnome-shell/extensions/") +
                           QString::fromLatin1(companionUuid);
    Subprocess assembly;
    const QStringList arguments{QStringLiteral("-DOUTPUT=") + folder,
                                QStringLiteral("-DUUID=") + QString::fromLatin1(companionUuid),
                                QStringLiteral("-DPROGRAM=") + believedProgram,
                                QStringLiteral("-DVERSION=0"),
                                QStringLiteral("-P"),
                                QStringLiteral(TILEWRIGHT_COMPANION_ASSEMBLY)};
    EXPECT_TRUE(assembly.start(QStringLiteral(TILEWRIGHT_CMAKE), arguments, environment(),
                               home_.logFile()));
    EXPECT_TRUE(assembly.waitForEnd());
    EXPECT_EQ(assembly.exitCode(), 0) << describe();
}

bool GnomeSession::startBus(Subprocess& bus, const QString& name, const char* variable) {
    const QString socket = home() + QStringLiteral("/run/") + name;
    const QString configuration = home() + QStringLiteral("/%1.conf").arg(name);
    writeFile(configuration, QString::fromLatin1(busConfiguration).arg(socket).toUtf8());
    home_.set(variable, QStringLiteral("unix:path=") + socket);
    return bus.start(QStringLiteral("dbus-daemon"),
                     {QStringLiteral("--nofork"), QStringLiteral("--config-file=") + configuration},
                     environment(), home_.logFile()) &&
           waitUntil([&] { return QFile::exists(socket); });
}

QString GnomeSession::busAddress() const {
    return environment().value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
}

bool GnomeSession::startShell() {
    const QString socket = QStringLiteral("wayland-test");
    if (!shell_.start(QStringLiteral("gnome-shell"),
                      {QStringLiteral("--headless"), QStringLiteral("--wayland"),
                       QStringLiteral("--unsafe-mode"), QStringLiteral("--virtual-monitor"),
                       QStringLiteral("1920x1080"), QStringLiteral("--wayland-display"), socket},
                      environment(), home_.logFile()))
        return false;
    home_.set("WAYLAND_DISPLAY", socket);
    // The bus's socket is there a little before it takes anybody in.
    if (!waitUntil([&] {
            if (QDBusConnection::connectToBus(busAddress(), witness_).isConnected())
                return true;
            QDBusConnection::disconnectFromBus(witness_);
            return false;
        }))
        return false;
    return waitUntil([&] {
        const auto* names = bus().interface();
        return names->isServiceRegistered(QStringLiteral("org.gnome.Shell")) &&
               names->isServiceRegistered(QStringLiteral("org.gnome.Mutter.RemoteDesktop"));
    });
}

void GnomeSession::waitUntilItRests() {
    // A pointer that begins in the corner opens the overview.
    input_ = std::make_unique<GnomeInput>(bus(), [this] {
        const QJsonArray at = ask(QStringLiteral("global.get_pointer()")).toArray();
        return QPoint(at[0].toInt(), at[1].toInt());
    });
    EXPECT_TRUE(waitUntil([&] {
        return !ask(QStringLiteral("Main.layoutManager._startingUp")).toBool();
    })) << describe();
    tell(QStringLiteral("Main.overview.hide()"));
    EXPECT_TRUE(waitUntil([&] { return !ask(QStringLiteral("Main.overview.visible")).toBool(); }));
    // A seat gets its pointer and its keyboard with the first use of each, and clients lose that.
    input_->move({1700, 1000});
    input_->click();
    input_->tap(KernelKey::shift);
    EXPECT_TRUE(waitUntil([&] { return isCompanionActive(); })) << describe();
}

QJsonValue GnomeSession::ask(const QString& script) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Shell"), QStringLiteral("/org/gnome/Shell"),
        QStringLiteral("org.gnome.Shell"), QStringLiteral("Eval"));
    message.setArguments({script});
    const QDBusMessage answer = bus().call(message);
    const QVariantList values = answer.arguments();
    if (answer.type() != QDBusMessage::ReplyMessage || !values.value(0).toBool()) {
        ADD_FAILURE() << script.toStdString() << ": " << answer.errorMessage().toStdString()
                      << values.value(1).toString().toStdString();
        return {};
    }
    const QByteArray array = '[' + values.value(1).toString().toUtf8() + ']';
    return QJsonDocument::fromJson(array).array().first();
}

QString GnomeSession::startClient(GnomeClient client, QRect area) {
    const QString title =
        QStringLiteral("client-%1-%2").arg(QString::fromLatin1(name(client))).arg(++clients_);
    const QString platform = QStringLiteral("QT_QPA_PLATFORM");
    const QStringList arguments{title, QStringLiteral("window")};
    switch (client) {
    case GnomeClient::qt:
        start(QStringLiteral(TILEWRIGHT_TEST_WINDOW), arguments,
              {{platform, QStringLiteral("wayland")}});
        break;
    case GnomeClient::gtk4:
        start(QStringLiteral("/usr/bin/python3"), {QStringLiteral(TILEWRIGHT_GTK4_WINDOW), title},
              {{QStringLiteral("GSK_RENDERER"), QStringLiteral("cairo")}});
        break;
    case GnomeClient::xwayland: {
        const auto told = [&](const char* variable) {
            return ask(QStringLiteral("imports.gi.GLib.getenv('%1')")
                           .arg(QString::fromLatin1(variable)))
                .toString();
        };
        start(QStringLiteral(TILEWRIGHT_TEST_WINDOW), arguments,
              {{platform, QStringLiteral("xcb")},
               {QStringLiteral("DISPLAY"), told("DISPLAY")},
               {QStringLiteral("XAUTHORITY"), told("XAUTHORITY")}});
        break;
    }
    }
    EXPECT_TRUE(waitUntil([&] { return !frame(title).isEmpty(); }))
        << "no window of " << name(client) << " appeared" << describe();
    place(title, area);
    return title;
}

QRect GnomeSession::frame(const QString& title) {
    const QJsonArray numbers =
        ask(windowScript(title, QStringLiteral("if (!w) return []; const r = w.get_frame_rect();"
                                               "return [r.x, r.y, r.width, r.height];")))
            .toArray();
    return {numbers[0].toInt(), numbers[1].toInt(), numbers[2].toInt(), numbers[3].toInt()};
}

void GnomeSession::place(const QString& title, QRect area) {
    const QString script =
        windowScript(title, QStringLiteral("w.move_resize_frame(false, %1, %2, %3, %4);"
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
        << " stays " << frame(title).width() << " x " << frame(title).height() << describe();
}

bool GnomeSession::isDragging() {
    return ask(QStringLiteral("global.display.get_grab_op ? global.display.get_grab_op() !== 0"
                              " : global.display.is_grabbed()"))
        .toBool();
}

void GnomeSession::grab(const QString& title) {
    constexpr QPoint inTitleBar(-60, 14);
    constexpr std::chrono::milliseconds onceTold{1500};
    constexpr int attempts = 4;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        const QRect before = frame(title);
        const QPoint from = QPoint(before.center().x(), before.top()) + inTitleBar;
        input_->move(from);
        input_->press();
        input_->glide(from + QPoint(60, 60));
        if (waitUntil([&] { return isDragging(); }, onceTold))
            return;
        input_->release();
        tellRepetition("a client that took no notice of a press on its title bar");
    }
    ADD_FAILURE() << "no drag began" << describe();
}

QImage GnomeSession::picture() {
    const QString path = home() + QStringLiteral("/picture-%1.png").arg(++pictures_);
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Shell.Screenshot"), QStringLiteral("/org/gnome/Shell/Screenshot"),
        QStringLiteral("org.gnome.Shell.Screenshot"), QStringLiteral("Screenshot"));
    message.setArguments({false, false, path});
    const QDBusMessage answer = bus().call(message);
    EXPECT_TRUE(answer.arguments().value(0).toBool()) << answer.errorMessage().toStdString();
    return QImage(path);
}

void GnomeSession::setCompanionEnabled(bool enabled) {
    tell(QStringLiteral("Main.extensionManager.%1('%2')")
             .arg(enabled ? QStringLiteral("enableExtension") : QStringLiteral("disableExtension"),
                  QString::fromLatin1(companionUuid)));
    EXPECT_TRUE(waitUntil([&] { return isCompanionActive() == enabled; })) << describe();
}

bool GnomeSession::isCompanionActive() {
    // 1 is what the shell has for "active" in all its versions.
    return ask(QStringLiteral("Main.extensionManager.lookup('%1')?.state === 1")
                   .arg(QString::fromLatin1(companionUuid)))
        .toBool();
}

QRect GnomeSession::item() {
    const QJsonArray numbers =
        ask(QStringLiteral(
                "(b => b ? [...b.get_transformed_position(), ...b.get_transformed_size()]"
                " : [])(Main.panel.statusArea['%1']?.get_first_child())")
                .arg(QString::fromLatin1(companionUuid)))
            .toArray();
    return QRectF(numbers[0].toDouble(), numbers[1].toDouble(), numbers[2].toDouble(),
                  numbers[3].toDouble())
        .toRect();
}

QRect GnomeSession::waitForItem() {
    QRect place;
    EXPECT_TRUE(waitUntil([&] {
        place = item();
        return place.width() > 10 && place.left() > 960;
    })) << "there is no item"
        << describe();
    return place;
}

} // namespace tilewright::testing
