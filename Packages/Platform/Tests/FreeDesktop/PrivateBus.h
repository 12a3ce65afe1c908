#pragma once

#include <Waiting.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <csignal>
#include <future>
#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace tilewright::testing {

/// A message bus of a test's own. Each connection to it is another peer.
class PrivateBus {
public:
    PrivateBus() {
        daemon_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        daemon_.setStandardErrorFile(QProcess::nullDevice());
        daemon_.start(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--session"), QStringLiteral("--nofork"),
                       QStringLiteral("--print-address=1")});
        if (daemon_.waitForStarted(20'000) && daemon_.waitForReadyRead(20'000))
            address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
        EXPECT_FALSE(address_.isEmpty()) << "the message bus did not start";
    }
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
        return QDBusConnection::connectToBus(address_, names_.back());
    }
    /// Returns once whatever came to the connection before this is with the event loop, which does
    /// not turn meanwhile.
    static void takeAllIn(const QDBusConnection& connection) {
        static_cast<void>(connection.call(QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"))));
    }
    /// Ends the bus at once.
    void stop() {
        if (daemon_.state() == QProcess::NotRunning)
            return;
        daemon_.kill();
        daemon_.waitForFinished(20'000);
    }

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
    QProcess daemon_;
    QString address_;
    QStringList names_;
};

} // namespace tilewright::testing
