#include "WaylandFixture.h"

#include <FakeMainLoop.h>
#include <FreeDesktop/FileDescriptor.h>

#include <QFile>
#include <QSignalSpy>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <wayland-client.h>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;

class WaylandConnectionTest : public WaylandFixture {};

/// A socket at which nobody listens yet.
FileDescriptor socketAt(const QString& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
    FileDescriptor descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    EXPECT_EQ(
        ::bind(descriptor.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
        0);
    return descriptor;
}

FileDescriptor acceptedBy(const FileDescriptor& listener) {
    FileDescriptor client;
    EXPECT_TRUE(waitUntil([&] {
        client = FileDescriptor(::accept4(listener.number(), nullptr, nullptr, SOCK_CLOEXEC));
        return client.isOpen();
    }));
    return client;
}

TEST_F(WaylandConnectionTest, KnowsWhatIsOfferedOnceItIsReady) {
    start();
    EXPECT_FALSE(connection.isReady());
    EXPECT_TRUE(connection.offers().empty());
    QSignalSpy ready(&connection, &WaylandConnection::ready);
    ASSERT_TRUE(waitUntil([&] { return ready.count() == 1; }));
    EXPECT_TRUE(connection.isReady());
    EXPECT_TRUE(connection.globals().canShowLayers());
    EXPECT_TRUE(connection.globals().viewporter);
    EXPECT_TRUE(connection.globals().fractionalScales);
    EXPECT_TRUE(connection.globals().idleInhibition);
    EXPECT_TRUE(connection.globals().outputManager);
}

TEST_F(WaylandConnectionTest, DoesWithoutWhatIsNotOffered) {
    connect({.layerShell = 0, .viewporter = 0, .fractionalScale = 0, .idleInhibition = 0});
    EXPECT_FALSE(connection.globals().canShowLayers());
    EXPECT_FALSE(connection.globals().viewporter);
    EXPECT_FALSE(connection.globals().idleInhibition);
}

TEST_F(WaylandConnectionTest, TellsWhatComesAndGoesLater) {
    connect();
    QSignalSpy coming(&connection, &WaylandConnection::offered);
    QSignalSpy going(&connection, &WaylandConnection::withdrawn);
    compositor->addOutput({.name = QStringLiteral("DP-2")});
    ASSERT_TRUE(waitUntil([&] { return coming.count() == 1; }));
    const auto offer = coming.at(0).at(0).value<WaylandOffer>();
    EXPECT_EQ(offer.interface, "wl_output");
    compositor->removeOutput(QStringLiteral("DP-2"));
    ASSERT_TRUE(waitUntil([&] { return going.count() == 1; }));
    EXPECT_EQ(going.at(0).at(0).toUInt(), offer.number);
}

TEST_F(WaylandConnectionTest, ComesBackWithTheNextCompositorAtTheSameSocket) {
    connect();
    QSignalSpy lost(&connection, &WaylandConnection::lost);
    for (int round = 1; round <= 3; ++round) {
        compositor.reset();
        ASSERT_TRUE(waitUntil([&] { return lost.count() == round; }));
        EXPECT_FALSE(connection.isReady());
        EXPECT_FALSE(connection.globals().compositor);
        start();
        ASSERT_TRUE(waitUntil([&] { return connection.isReady(); }));
    }
}

TEST_F(WaylandConnectionTest, CanBeFlushedByWhomItTellsThatItIsLost) {
    connect();
    bool wasTold = false;
    QObject::connect(&connection, &WaylandConnection::lost, &connection, [&] {
        connection.flush();
        wasTold = true;
    });
    compositor.reset();
    EXPECT_TRUE(waitUntil([&] { return wasTold; }));
    start();
    EXPECT_TRUE(waitUntil([&] { return connection.isReady(); }));
}

TEST_F(WaylandConnectionTest, FindsACompositorThatListensAMomentAfterItHasMadeItsSocket) {
    const FileDescriptor socket = socketAt(socketPath());
    // What the folder has told is told before this.
    const FileDescriptor other = socketAt(folder.filePath(QStringLiteral("other")));
    QCoreApplication::processEvents();
    ASSERT_EQ(::listen(socket.number(), 1), 0);
    EXPECT_TRUE(acceptedBy(socket).isOpen());
}

TEST_F(WaylandConnectionTest, TriesNoMoreOnceWhoeverListensHasEndedAFewConnectionsAtOnce) {
    FakeMainLoop time;
    const QString path = folder.filePath(QStringLiteral("rude"));
    const FileDescriptor socket = socketAt(path);
    ASSERT_EQ(::listen(socket.number(), 1), 0);
    const WaylandConnection rejected(time, path);
    int tries = 0;
    for (; time.activeTimerCount() > 0 && tries < 100; ++tries) {
        static_cast<void>(acceptedBy(socket));
        // Its end has to be noticed before the next try.
        QCoreApplication::processEvents();
        time.advance(5s);
    }
    EXPECT_GT(tries, 0);
    EXPECT_LT(tries, 100);
}

TEST_F(WaylandConnectionTest, LetsNoTimeMatterWhileNobodyListensAndWhileSomebodyDoes) {
    FakeMainLoop time;
    WaylandConnection waiting(time, socketPath());
    time.advance(1min);
    EXPECT_EQ(time.activeTimerCount(), 0U);
    start();
    ASSERT_TRUE(waitUntil([&] { return waiting.isReady(); }));
    EXPECT_EQ(time.activeTimerCount(), 0U);
}

TEST_F(WaylandConnectionTest, GivesUpAfterAFewConnectionsThatEndedForARuleItBroke) {
    connect();
    QSignalSpy lost(&connection, &WaylandConnection::lost);
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(waitUntil([&] { return connection.isReady(); }));
        compositor->blame();
        ASSERT_TRUE(waitUntil([&] { return lost.count() == round; }));
    }
    compositor.reset();
    start();
    connection.retry();
    WaylandConnection another(loop, socketPath());
    ASSERT_TRUE(waitUntil([&] { return another.isReady(); }));
    EXPECT_EQ(compositor->connections(), 1);
    // What is asked for by name is tried all the same.
    connection.reconnect();
    EXPECT_FALSE(connection.isReady());
}

TEST_F(WaylandConnectionTest, MakesANewConnectionWhenItIsAskedTo) {
    connect();
    QSignalSpy lost(&connection, &WaylandConnection::lost);
    connection.reconnect();
    EXPECT_EQ(lost.count(), 1);
    ASSERT_TRUE(waitUntil([&] { return connection.isReady(); }));
    EXPECT_EQ(compositor->connections(), 2);
}

TEST_F(WaylandConnectionTest, MayBeAskedForANewConnectionUponItsBeingReady) {
    start();
    int times = 0;
    QObject::connect(&connection, &WaylandConnection::ready, &connection, [&] {
        if (++times == 1)
            connection.reconnect();
    });
    EXPECT_TRUE(waitUntil([&] { return times == 2; }));
    EXPECT_TRUE(connection.isReady());
}

TEST_F(WaylandConnectionTest, LetsAnObjectOutliveTheConnectionThatItWasMadeOn) {
    connect();
    auto surface =
        connection.own(wl_compositor_create_surface(connection.globals().compositor.get()));
    compositor.reset();
    ASSERT_TRUE(waitUntil([&] { return !connection.isReady(); }));
    start();
    ASSERT_TRUE(waitUntil([&] { return connection.isReady(); }));
    surface.reset();
    EXPECT_TRUE(connection.isReady());
}

} // namespace
} // namespace tilewright::testing
