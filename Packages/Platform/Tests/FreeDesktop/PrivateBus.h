#pragma once

#include <Waiting.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <future>
#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace tilewright::testing {

/// A message bus of a test's own. Each connection to it is another peer.
class PrivateBus {
public:
    PrivateBus() { start(); }
    ~PrivateBus() {
        for (const QString& name : names_)
            QDBusConnection::disconnectFromBus(name);
        stop();
    }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Another connection, open for as long as the bus object lives.
    QDBusConnection connect() {
        static int count = 0;
        names_.append(QStringLiteral("private-%1").arg(++count));
        return QDBusConnection::connectToBus(QString::fromUtf8(address()), names_.back());
    }
    /// Returns once whatever came to the connection before this is with the event loop, which does
    /// not turn meanwhile.
    static void takeAllIn(const QDBusConnection& connection) {
        static_cast<void>(connection.call(QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"))));
    }
    /// Where it is; another one at the same place once it is started again.
    [[nodiscard]] QByteArray address() const { return "unix:path=" + socket().toUtf8(); }
    [[nodiscard]] QString folder() const { return folder_.path(); }
    /// Begins the bus, or another one in its place.
    void start() {
        QFile::remove(socket());
        daemon_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        daemon_.setStandardErrorFile(QProcess::nullDevice());
        daemon_.start(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--session"), QStringLiteral("--nofork"),
                       QStringLiteral("--address=unix:path=") + socket(),
                       QStringLiteral("--print-address=1")});
        EXPECT_TRUE(daemon_.waitForStarted(20'000) && daemon_.waitForReadyRead(20'000))
            << "the message bus did not start";
        static_cast<void>(daemon_.readAllStandardOutput());
    }
    /// Ends the bus at once.
    void stop() {
        if (daemon_.state() == QProcess::NotRunning)
            return;
        daemon_.kill();
        daemon_.waitForFinished(20'000);
    }
    /// Has the bus take connections and words and answer none, as when the machine keeps it
    /// waiting.
    void pause() { ::kill(static_cast<pid_t>(daemon_.processId()), SIGSTOP); }
    void resume() { ::kill(static_cast<pid_t>(daemon_.processId()), SIGCONT); }

    /// Does something while the bus, as when the machine keeps it waiting, answers nobody. Whether
    /// it came back without an answer; the bus goes on afterwards, or at the deadline.
    template<class Action>
    [[nodiscard]] bool isDoneWithoutAnAnswer(Action action,
                                             std::chrono::milliseconds deadline = patience) {
        const auto pid = static_cast<pid_t>(daemon_.processId());
        ::kill(pid, SIGSTOP);
        std::promise<void> done;
        auto isDone = std::async(std::launch::async, [pid, deadline, done = done.get_future()] {
            const bool isInTime = done.wait_for(deadline) == std::future_status::ready;
            ::kill(pid, SIGCONT);
            return isInTime;
        });
        action();
        done.set_value();
        return isDone.get();
    }

    /// A connection to a bus that is not there.
    static QDBusConnection absent() {
        return QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent/bus"),
                                             QStringLiteral("absent"));
    }

private:
    [[nodiscard]] QString socket() const { return folder_.filePath(QStringLiteral("bus")); }

    QTemporaryDir folder_;
    QProcess daemon_;
    QStringList names_;
};

} // namespace tilewright::testing
