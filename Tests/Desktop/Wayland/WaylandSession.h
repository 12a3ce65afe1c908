#pragma once

#include <ListeningSocket.h>
#include <PrivateHome.h>
#include <Waiting.h>
#include <XClient.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>

namespace tilewright::testing {

using namespace Qt::StringLiterals;

inline QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A compositor without a screen, a bus and a home of its own.
class WaylandSession : public ::testing::Test {
protected:
    enum class Beside { nothing, xServer };

    void start(Beside beside) {
        environment.insert(u"HOME"_s, folder.path());
        environment.insert(u"XDG_RUNTIME_DIR"_s, folder.path());
        startBus();
        QStringList arguments{u"--backend=headless-backend.so"_s, u"--socket=wayland-test"_s,
                              u"--idle-time=0"_s};
        if (beside == Beside::xServer)
            arguments.append(u"--xwayland"_s);
        ASSERT_TRUE(compositor.start(u"weston"_s, arguments, environment, compositorLog()));
        ASSERT_TRUE(waitUntil([&] { return isListenedAt(folder.filePath(u"wayland-test"_s)); }))
            << contentsOf(compositorLog()).toStdString();
        environment.insert(u"WAYLAND_DISPLAY"_s, u"wayland-test"_s);
    }
    void startBus() {
        ASSERT_TRUE(bus.start(u"dbus-daemon"_s,
                              {u"--session"_s, u"--nofork"_s, u"--print-address=1"_s}, environment,
                              busLog()));
        static const QRegularExpression address(u"unix:\\S+"_s);
        QString told;
        ASSERT_TRUE(waitUntil([&] {
            told = address.match(QString::fromUtf8(contentsOf(busLog()))).captured();
            return !told.isEmpty();
        }));
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, told);
    }
    /// The name of the X server beside the compositor.
    [[nodiscard]] QString xDisplay() {
        static const QRegularExpression told(u"xserver listening on display (:\\d+)"_s);
        QString display;
        EXPECT_TRUE(waitUntil([&] {
            display = told.match(QString::fromUtf8(contentsOf(compositorLog()))).captured(1);
            return !display.isEmpty();
        }));
        return display;
    }
    [[nodiscard]] QString busLog() const { return folder.filePath(u"bus.log"_s); }
    [[nodiscard]] QString compositorLog() const { return folder.filePath(u"compositor.log"_s); }
    [[nodiscard]] QString programLog() const { return folder.filePath(u"program.log"_s); }

    bool startProgram() {
        return program.start(QStringLiteral(TILEWRIGHT_PROGRAM), {}, environment, programLog());
    }
    /// What a further start ends with.
    [[nodiscard]] int startAgain() {
        Subprocess second;
        EXPECT_TRUE(second.start(QStringLiteral(TILEWRIGHT_PROGRAM), {}, environment));
        EXPECT_TRUE(second.waitForEnd());
        return second.exitCode();
    }
    /// Which of Qt's platform plug-ins the program has loaded.
    [[nodiscard]] bool hasLoaded(const QByteArray& plugin) const {
        return contentsOf(u"/proc/%1/maps"_s.arg(program.pid())).contains(plugin);
    }
    /// Whether it has said that it is the one instance: to the X server where there is one, else on
    /// the bus.
    [[nodiscard]] bool hasClaimed() {
        if (hasLoaded("libqxcb.so")) {
            const XClient client(environment.value(u"DISPLAY"_s));
            const XReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
                client.xcb(),
                xcb_get_selection_owner(client.xcb(), client.atom("_TILEWRIGHT_INSTANCE")),
                nullptr));
            return owner && owner->owner != XCB_NONE;
        }
        const QDBusConnection connection = QDBusConnection::connectToBus(
            environment.value(u"DBUS_SESSION_BUS_ADDRESS"_s), u"witness"_s);
        const QStringList names = connection.interface()->registeredServiceNames();
        QDBusConnection::disconnectFromBus(u"witness"_s);
        return std::any_of(names.begin(), names.end(), [](const QString& name) {
            return name.startsWith(u"org.tilewright.Tilewright."_s);
        });
    }
    void expectToRunAsTheOneInstanceUntilTold() {
        // A second one that is quicker would be the first.
        ASSERT_TRUE(waitUntil([&] { return hasClaimed(); }));
        EXPECT_EQ(startAgain(), 0) << contentsOf(programLog()).toStdString();
        EXPECT_TRUE(program.isRunning());
        program.signal(SIGTERM);
        EXPECT_TRUE(program.waitForEnd());
        EXPECT_EQ(program.exitCode(), 0) << contentsOf(programLog()).toStdString();
    }

    QTemporaryDir folder;
    QProcessEnvironment environment = inheritedEnvironment();
    Subprocess bus;
    Subprocess compositor;
    Subprocess program;
};

} // namespace tilewright::testing
