#include "FakePortal.h"
#include "PrivateBus.h"

#include <FakeMainLoop.h>
#include <FreeDesktop/BusGreeting.h>
#include <FreeDesktop/BusPrecaution.h>
#include <FreeDesktop/FreeDesktopAppearance.h>
#include <FreeDesktop/MessageBus.h>
#include <FreeDesktop/ScopedVariable.h>
#include <Waiting.h>

#include <QSignalSpy>
#include <cstring>
#include <gtest/gtest.h>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace tilewright::testing {
namespace {

class MessageBusTest : public ::testing::Test {
protected:
    PrivateBus bus;
    FakeMainLoop loop;
};

constexpr auto busVariable = "DBUS_SESSION_BUS_ADDRESS";

/// A socket that takes connections and says nothing.
class MuteSocket {
public:
    /// `path` begins with a zero byte where it is no file's.
    explicit MuteSocket(const QByteArray& path)
        : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un place{};
        place.sun_family = AF_UNIX;
        std::memcpy(place.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
        const auto length = offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(path.size());
        const auto* address = static_cast<const sockaddr*>(static_cast<const void*>(&place));
        EXPECT_EQ(::bind(socket_, address, static_cast<socklen_t>(length)), 0);
        EXPECT_EQ(::listen(socket_, 4), 0);
    }
    ~MuteSocket() { ::close(socket_); }
    MuteSocket(const MuteSocket&) = delete;
    MuteSocket& operator=(const MuteSocket&) = delete;

    void hangUp() const { ::close(::accept(socket_, nullptr, nullptr)); }

private:
    const int socket_;
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
        EXPECT_EQ(QDBusConnection(former).name(), QString()) << "it is not kept";
    }
}

TEST_F(MessageBusTest, IsLeftAlsoWhereTheNextOneIsThereAtOnce) {
    const MessageBus following(loop, bus.address());
    ASSERT_TRUE(waitUntil([&] { return following.isJoined(); }));
    QSignalSpy left(&following, &MessageBus::left);
    QSignalSpy joined(&following, &MessageBus::joined);
    bus.stop();
    bus.start();
    ASSERT_TRUE(waitUntil([&] { return joined.size() == 1; }));
    EXPECT_EQ(left.size(), 1);
}

TEST_F(MessageBusTest, OfTheEnvironmentIsJoinedAtOnceWhereItAnswers) {
    const ScopedVariable told(busVariable, bus.address());
    // On a machine that is busy the answer may be late: then the next one is joined at once.
    EXPECT_TRUE(waitUntil([&] {
        std::optional<MessageBus> joining;
        static_cast<void>(bus.isDoneWithoutAnAnswer(
            [&] { joining.emplace(loop, MessageBus::Kind::session); }, 20ms));
        return joining->isJoined();
    }));
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

TEST(BusGreeting, FindsSomebodyBehindANameThatIsNoFiles) {
    const QByteArray name = "tilewright-test-" + QByteArray::number(getpid());
    const MuteSocket socket('\0' + name);
    EXPECT_EQ(BusGreeting("unix:abstract=" + name).look(), BusGreeting::State::unanswered);
}

TEST(BusGreeting, GoesOnToTheNextAddressWhereNobodyIsAtTheFirst) {
    PrivateBus bus;
    EXPECT_EQ(BusGreeting("unix:path=/dev/null/none;" + bus.address()).wait(patience),
              BusGreeting::State::answered);
}

TEST(BusGreeting, FindsNobodyWhereTheOtherSideHangsUp) {
    const QTemporaryDir folder;
    const QByteArray path = folder.filePath(QStringLiteral("bus")).toUtf8();
    const MuteSocket socket(path);
    BusGreeting greeting("unix:path=" + path);
    EXPECT_EQ(greeting.look(), BusGreeting::State::unanswered);
    socket.hangUp();
    EXPECT_EQ(greeting.wait(patience), BusGreeting::State::absent);
}

TEST(BusPrecaution, TellsQtOfNoBusWhereItIsSilentAndLeavesTheEnvironmentAsItWas) {
    PrivateBus bus;
    const ScopedVariable told(busVariable, bus.address());
    bus.pause();
    {
        const BusPrecaution precaution;
        EXPECT_NE(qgetenv(busVariable), bus.address());
        bus.resume();
    }
    EXPECT_EQ(qgetenv(busVariable), bus.address());
    EXPECT_TRUE(waitUntil([&] {
        const BusPrecaution precaution;
        return qgetenv(busVariable) == bus.address();
    })) << "one that answers is Qt's as well";
}

} // namespace tilewright::testing
