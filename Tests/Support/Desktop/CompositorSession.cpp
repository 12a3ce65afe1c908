#include "CompositorSession.h"

#include "ListeningSocket.h"
#include "Repetition.h"
#include "Waiting.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <csignal>
#include <cstdlib>
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

} // namespace

const char* name(CompositorClient client) {
    switch (client) {
    case CompositorClient::qt:
        return "Qt";
    case CompositorClient::gtk4:
        return "Gtk4";
    case CompositorClient::xwayland:
        return "Xwayland";
    case CompositorClient::terminal:
        return "Terminal";
    }
    return "";
}

bool isNear(const QRect& frame, const QRect& other, int tolerance) {
    const auto differ = [&](int one, int two) { return std::abs(one - two) > tolerance; };
    return !differ(frame.x(), other.x()) && !differ(frame.y(), other.y()) &&
           !differ(frame.width(), other.width()) && !differ(frame.height(), other.height());
}

std::string text(const QRect& frame) {
    return QStringLiteral("%1 x %2 at %3, %4")
        .arg(frame.width())
        .arg(frame.height())
        .arg(frame.x())
        .arg(frame.y())
        .toStdString();
}

CompositorSession::CompositorSession(const QString& desktop)
    : witness_(QStringLiteral("witness-") + home_.path()) {
    set("XDG_SESSION_TYPE", QStringLiteral("wayland"));
    set("XDG_CURRENT_DESKTOP", desktop);
    set("LIBGL_ALWAYS_SOFTWARE", QStringLiteral("1"));
    set("GTK_A11Y", QStringLiteral("none"));
}

CompositorSession::~CompositorSession() {
    input_.reset();
    home_.endPrograms();
    QDBusConnection::disconnectFromBus(witness_);
    // Told to end, it takes the X server's lock file away with it.
    compositor_.signal(SIGTERM);
    static_cast<void>(compositor_.waitForEnd());
    compositor_.stop();
    sessionBus_.stop();
    systemBus_.stop();
}

QString CompositorSession::quoted(const QString& text) {
    return QString::fromUtf8(QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact))
        .mid(1)
        .chopped(1);
}

QRect CompositorSession::toRect(const QJsonValue& numbers) {
    return QRectF(numbers[0].toDouble(), numbers[1].toDouble(), numbers[2].toDouble(),
                  numbers[3].toDouble())
        .toRect();
}

bool CompositorSession::startBuses() {
    if (!startBus(systemBus_, QStringLiteral("system-bus"), "DBUS_SYSTEM_BUS_ADDRESS") ||
        !startBus(sessionBus_, QStringLiteral("bus"), "DBUS_SESSION_BUS_ADDRESS"))
        return false;
    // The bus's socket is there a little before it takes anybody in.
    return waitUntil([&] {
        if (QDBusConnection::connectToBus(busAddress(), witness_).isConnected())
            return true;
        QDBusConnection::disconnectFromBus(witness_);
        return false;
    });
}

bool CompositorSession::startBus(Subprocess& bus, const QString& name, const char* variable) {
    const QString socket = home() + QStringLiteral("/run/") + name;
    const QString configuration = home() + QStringLiteral("/%1.conf").arg(name);
    writeFile(configuration, QString::fromLatin1(busConfiguration).arg(socket).toUtf8());
    set(variable, QStringLiteral("unix:path=") + socket);
    return bus.start(QStringLiteral("dbus-daemon"),
                     {QStringLiteral("--nofork"), QStringLiteral("--config-file=") + configuration},
                     home_.environment(), home_.logFile()) &&
           waitUntil([&] { return isListenedAt(socket); });
}

QString CompositorSession::busAddress() const {
    return home_.environment().value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
}

bool CompositorSession::startCompositor(const QString& program, const QStringList& arguments) {
    // A second one is no guest of the first.
    QProcessEnvironment environment = home_.environment();
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    set("WAYLAND_DISPLAY", socketName());
    return compositor_.start(program, arguments, environment, home_.logFile());
}

QColor CompositorSession::pixel(QPoint at) {
    const QImage now = picture();
    return now.pixelColor((QPointF(at) * now.devicePixelRatio()).toPoint());
}

void CompositorSession::useInput(QPoint nowhere) {
    input_->move(nowhere);
    input_->click();
    input_->tap(KernelKey::shift);
}

QString CompositorSession::startClient(CompositorClient client, QRect area) {
    return startClient(
        client, area,
        QStringLiteral("client-%1-%2").arg(QString::fromLatin1(name(client))).arg(++clients_));
}

QString CompositorSession::startClient(CompositorClient client, QRect area, const QString& title) {
    startProgramOf(client, title);
    EXPECT_TRUE(waitUntil([&] { return !frame(title).isEmpty(); }))
        << "no window of " << name(client) << " appeared" << describe();
    place(title,
          client == CompositorClient::terminal ? QRect(area.topLeft(), frame(title).size()) : area);
    return title;
}

QString CompositorSession::startBar(QRect area) {
    const QString title = QStringLiteral("bar-%1").arg(++clients_);
    std::map<QString, QString> environment = xServer();
    environment[QStringLiteral("GDK_BACKEND")] = QStringLiteral("x11");
    start(QStringLiteral("/usr/bin/python3"),
          {QStringLiteral(TILEWRIGHT_BAR_WINDOW), title, QString::number(area.width()),
           QString::number(area.height())},
          environment);
    EXPECT_TRUE(waitUntil([&] { return !frame(title).isEmpty(); }))
        << "no bar appeared" << describe();
    place(title, area);
    return title;
}

void CompositorSession::keepFree(const QString& bar, int height) {
    Subprocess& tool =
        start(QStringLiteral("xprop"),
              {QStringLiteral("-name"), bar, QStringLiteral("-f"), QStringLiteral("_NET_WM_STRUT"),
               QStringLiteral("32c"), QStringLiteral("-set"), QStringLiteral("_NET_WM_STRUT"),
               QStringLiteral("0,0,%1,0").arg(height)},
              xServer());
    EXPECT_TRUE(tool.waitForEnd()) << describe();
    EXPECT_EQ(tool.exitCode(), 0) << describe();
}

void CompositorSession::startProgramOf(CompositorClient client, const QString& title) {
    const QString platform = QStringLiteral("QT_QPA_PLATFORM");
    const QStringList arguments{title, QStringLiteral("window")};
    const auto startTraced = [&](const QString& program, const QStringList& with,
                                 std::map<QString, QString> environment = {}) {
        environment[QStringLiteral("WAYLAND_DEBUG")] = QStringLiteral("client");
        home_.start(program, with, environment, title + QStringLiteral(".log"));
    };
    switch (client) {
    case CompositorClient::qt:
        startTraced(QStringLiteral(TILEWRIGHT_TEST_WINDOW), arguments,
                    {{platform, QStringLiteral("wayland")}});
        break;
    case CompositorClient::gtk4:
        startTraced(QStringLiteral("/usr/bin/python3"),
                    {QStringLiteral(TILEWRIGHT_GTK4_WINDOW), title},
                    {{QStringLiteral("GSK_RENDERER"), QStringLiteral("cairo")}});
        break;
    case CompositorClient::xwayland: {
        std::map<QString, QString> environment = xServer();
        environment[platform] = QStringLiteral("xcb");
        start(QStringLiteral(TILEWRIGHT_TEST_WINDOW), arguments, environment);
        break;
    }
    case CompositorClient::terminal: {
        const QString shell = home() + u'/' + title;
        writeFile(
            shell,
            QStringLiteral("#!/bin/sh\nprintf '\\033]0;%1\\007'\nexec cat\n").arg(title).toUtf8());
        EXPECT_TRUE(QFile::setPermissions(shell, QFile::ReadOwner | QFile::ExeOwner));
        startTraced(QStringLiteral("weston-terminal"), {QStringLiteral("--shell=") + shell});
        break;
    }
    }
}

void CompositorSession::grab(const QString& title) {
    constexpr QPoint inTitleBar(-60, 12);
    constexpr std::chrono::milliseconds onceTold{1500};
    constexpr int attempts = 4;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        waitUntilShown();
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

} // namespace tilewright::testing
