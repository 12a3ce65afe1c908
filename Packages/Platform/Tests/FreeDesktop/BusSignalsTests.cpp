#include "PrivateBus.h"

#include <FakeMainLoop.h>
#include <FreeDesktop/BusSignals.h>
#include <FreeDesktop/MessageBus.h>
#include <Waiting.h>

#include <QCoreApplication>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace tilewright::testing {
namespace {

const QString path = QStringLiteral("/org/example/Clock");
const QString interface = QStringLiteral("org.example.Clock");

/// A clock's signals as one connection of a bus of the test's own hears them.
class BusSignalsTest : public ::testing::Test {
protected:
    /// Sends a signal to all who listen, or to this connection alone, and lets it arrive.
    void send(const QDBusConnection& sender, const QString& name, const QString& to = {},
              const QString& from = path) {
        QDBusMessage signal = to.isEmpty()
                                  ? QDBusMessage::createSignal(from, interface, name)
                                  : QDBusMessage::createTargetedSignal(to, from, interface, name);
        signal << QStringLiteral("noon");
        // The bus knows by then what is listened to.
        PrivateBus::takeAllIn(own);
        sender.send(signal);
        PrivateBus::takeAllIn(sender);
        PrivateBus::takeAllIn(own);
        QCoreApplication::processEvents();
    }
    /// The names of those that were heard since it was asked last.
    QStringList heard() {
        QStringList names;
        while (!spy.isEmpty())
            names += spy.takeFirst().at(0).value<QDBusMessage>().member();
        return names;
    }

    PrivateBus daemon;
    const QDBusConnection own = daemon.connect();
    const QDBusConnection first = daemon.connect();
    const QDBusConnection second = daemon.connect();
    const MessageBus bus{own};
    BusSignals clock{bus, path, interface, {QStringLiteral("Struck"), QStringLiteral("Stopped")}};
    QSignalSpy spy{&clock, &BusSignals::heard};
};

} // namespace

TEST_F(BusSignalsTest, AreThoseOfTheirNamesFromTheOneWhoIsListenedTo) {
    send(first, QStringLiteral("Struck"));
    EXPECT_EQ(heard(), QStringList()) << "nobody is listened to yet";
    clock.listenTo(first.baseService());
    EXPECT_EQ(clock.sender(), first.baseService());
    send(first, QStringLiteral("Struck"));
    send(first, QStringLiteral("Stopped"));
    send(first, QStringLiteral("Wound"));
    send(first, QStringLiteral("Struck"), {}, QStringLiteral("/org/example/OtherClock"));
    EXPECT_EQ(heard(), (QStringList{QStringLiteral("Struck"), QStringLiteral("Stopped")}));
}

TEST_F(BusSignalsTest, AreNobodyElsesWhomeverTheyAreSentTo) {
    clock.listenTo(first.baseService());
    send(second, QStringLiteral("Struck"));
    send(second, QStringLiteral("Struck"), own.baseService());
    EXPECT_EQ(heard(), QStringList());
    send(first, QStringLiteral("Struck"), own.baseService());
    EXPECT_EQ(heard(), QStringList{QStringLiteral("Struck")});
}

TEST_F(BusSignalsTest, FollowTheOneWhoIsListenedTo) {
    clock.listenTo(first.baseService());
    clock.listenTo(second.baseService());
    send(first, QStringLiteral("Struck"));
    EXPECT_EQ(heard(), QStringList());
    send(second, QStringLiteral("Struck"));
    EXPECT_EQ(heard(), QStringList{QStringLiteral("Struck")});
    clock.listenTo({});
    send(second, QStringLiteral("Struck"));
    EXPECT_EQ(heard(), QStringList());
}

TEST_F(BusSignalsTest, AreHeardOnceHoweverOftenTheSameOneIsListenedTo) {
    clock.listenTo(first.baseService());
    clock.listenTo(first.baseService());
    send(first, QStringLiteral("Struck"));
    EXPECT_EQ(heard(), QStringList{QStringLiteral("Struck")});
}

TEST_F(BusSignalsTest, AskTheBusForNoAnswer) {
    EXPECT_TRUE(daemon.isDoneWithoutAnAnswer([&] {
        clock.listenTo(first.baseService());
        clock.listenTo(second.baseService());
        clock.listenTo({});
    }));
}

TEST(BusSignals, ForgetTheirSenderWithTheBus) {
    PrivateBus daemon;
    FakeMainLoop loop;
    MessageBus bus(loop, daemon.address());
    ASSERT_TRUE(waitUntil([&] { return bus.isJoined(); }));
    BusSignals struck(bus, path, interface, {QStringLiteral("Struck")});
    QSignalSpy spy(&struck, &BusSignals::heard);
    struck.listenTo(QStringLiteral(":1.1"));
    daemon.stop();
    ASSERT_TRUE(waitUntil([&] { return !bus.isJoined(); }));
    EXPECT_EQ(struck.sender(), QString());

    daemon.start();
    ASSERT_TRUE(waitUntil([&] {
        loop.advance(1s);
        return bus.isJoined();
    }));
    const QDBusConnection next = daemon.connect();
    struck.listenTo(next.baseService());
    PrivateBus::takeAllIn(bus.connection());
    next.send(QDBusMessage::createSignal(path, interface, QStringLiteral("Struck")));
    EXPECT_TRUE(waitUntil([&] { return spy.size() == 1; })) << "the next bus's own";
}

} // namespace tilewright::testing
