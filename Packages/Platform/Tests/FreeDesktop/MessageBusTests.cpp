#include "FakePortal.h"
#include "PrivateBus.h"

#include <FakeMainLoop.h>
#include <FreeDesktop/BusGreeting.h>
#include <FreeDesktop/FreeDesktopAppearance.h>
#include <FreeDesktop/MessageBus.h>
#include <Waiting.h>

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <optional>

using namespace std::chrono_literals;

namespace tilewright::testing {
namespace {

class MessageBusTest : public ::testing::Test {
protected:
    PrivateBus bus;
    FakeMainLoop loop;
};

} // namespace

TEST_F(MessageBusTest, IsJoinedWhereItAnswers) {
    const MessageBus joined(loop, bus.address());
    EXPECT_TRUE(waitUntil([&] { return joined.isJoined(); }));
    EXPECT_TRUE(joined.connection().isConnected());
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(MessageBusTest, IsJoinedWhateverIdentityItsAddressNames) {
    const MessageBus joined(loop, bus.address() + ",guid=00112233445566778899aabbccddeeff");
    EXPECT_TRUE(waitUntil([&] { return joined.isJoined(); }));
}

TEST_F(MessageBusTest, IsNotWaitedForWhereItTakesConnectionsAndSaysNothing) {
    std::optional<MessageBus> silent;
    EXPECT_TRUE(bus.isDoneWithoutAnAnswer([&] {
        silent.emplace(loop, bus.address());
        EXPECT_FALSE(silent->isJoined());
        EXPECT_FALSE(silent->isAbsent());
        QCoreApplication::processEvents();
        EXPECT_FALSE(silent->isJoined());
    }));
    EXPECT_TRUE(waitUntil([&] { return silent->isJoined(); })) << "when it answers";
}

TEST_F(MessageBusTest, IsJoinedWhenItComesLater) {
    bus.stop();
    QFile::remove(bus.folder() + QStringLiteral("/bus"));
    const MessageBus later(loop, bus.address());
    EXPECT_TRUE(later.isAbsent());
    EXPECT_EQ(loop.activeTimerCount(), 0U) << "nothing is polled";
    bus.start();
    EXPECT_TRUE(waitUntil([&] { return loop.activeTimerCount() == 1; }));
    loop.advance(1s);
    EXPECT_TRUE(waitUntil([&] { return later.isJoined(); }));
}

TEST_F(MessageBusTest, IsLeftWhenItGoesAndTheNextOneIsJoined) {
    const MessageBus following(loop, bus.address());
    ASSERT_TRUE(waitUntil([&] { return following.isJoined(); }));
    QSignalSpy left(&following, &MessageBus::left);
    QSignalSpy joined(&following, &MessageBus::joined);
    const QString former = following.connection().name();
    for (int round = 1; round <= 3; ++round) {
        bus.stop();
        ASSERT_TRUE(waitUntil([&] { return !following.isJoined(); }));
        EXPECT_GE(left.size(), round);
        loop.advance(1min);
        EXPECT_EQ(loop.activeTimerCount(), 0U) << "it is asked for a few times only";
        bus.start();
        ASSERT_TRUE(waitUntil([&] {
            loop.advance(1s);
            return following.isJoined();
        }));
        EXPECT_EQ(joined.size(), round);
        EXPECT_TRUE(following.connection().isConnected());
        EXPECT_NE(following.connection().name(), former);
    }
}

TEST_F(MessageBusTest, HasNoSuccessorWhereAnybodyMightBeIt) {
    const MessageBus following(loop, bus.address());
    ASSERT_TRUE(waitUntil([&] { return following.isJoined(); }));
    QFile::setPermissions(bus.folder(), QFile::permissions(bus.folder()) | QFile::WriteOther);
    bus.stop();
    ASSERT_TRUE(waitUntil([&] { return following.isAbsent(); }));
    loop.advance(1min);
    bus.start();
    const MessageBus fresh(loop, bus.address());
    ASSERT_TRUE(waitUntil([&] { return fresh.isJoined(); }));
    EXPECT_TRUE(staysTrue(
        [&] {
            loop.advance(1s);
            return !following.isJoined();
        },
        200ms));
}

TEST_F(MessageBusTest, IsAbsentWithoutAConnection) {
    const MessageBus none(PrivateBus::absent());
    EXPECT_FALSE(none.isJoined());
    EXPECT_TRUE(none.isAbsent());
}

TEST_F(MessageBusTest, TellsTheWishesOfThePortalOnEachBusThatIsJoined) {
    MessageBus following(loop, bus.address());
    const FreeDesktopAppearance appearance(following);
    for (const bool isDark : {true, false, true}) {
        FakePortal portal(bus.connect());
        portal.set("org.freedesktop.appearance", "color-scheme", isDark ? 1U : 2U);
        portal.appear();
        EXPECT_TRUE(waitUntil([&] {
            loop.advance(1s);
            return appearance.prefersDark() == isDark;
        }));
        bus.stop();
        ASSERT_TRUE(waitUntil([&] { return !following.isJoined(); }));
        EXPECT_EQ(appearance.prefersDark(), isDark) << "what it told stands";
        bus.start();
    }
}

TEST(BusGreeting, FindsTheSocketsInAddresses) {
    EXPECT_EQ(BusGreeting::socketPaths("unix:path=/run/user/1000/bus"),
              QList<QByteArray>{"/run/user/1000/bus"});
    EXPECT_EQ(BusGreeting::socketPaths("unix:guid=ab,path=/a%20b;tcp:host=h,port=1;unix:path=/c"),
              (QList<QByteArray>{"/a b", "/c"}));
    EXPECT_EQ(BusGreeting::socketPaths("unix:abstract=/tmp/dbus-x,guid=ab"),
              QList<QByteArray>{QByteArray("\0/tmp/dbus-x", 12)});
    for (const QByteArray none :
         {"", "unix:", "unix:tmpdir=/tmp", "autolaunch:", "unix:path=", ";"})
        EXPECT_TRUE(BusGreeting::socketPaths(none).isEmpty()) << none.constData();
}

TEST(BusGreeting, SaysThatABusIsThereThatCannotBeGreeted) {
    EXPECT_EQ(BusGreeting("tcp:host=localhost,port=1").look(), BusGreeting::State::answered);
}

TEST(BusGreeting, FindsNobodyAtAPathThatIsNoSocketOrTooLong) {
    EXPECT_EQ(BusGreeting("unix:path=/dev/null").look(), BusGreeting::State::absent);
    EXPECT_EQ(BusGreeting("unix:path=/" + QByteArray(200, 'x')).look(), BusGreeting::State::absent);
}

} // namespace tilewright::testing
