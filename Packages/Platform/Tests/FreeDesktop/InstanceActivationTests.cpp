#include "PrivateBus.h"

#include <FakeMainLoop.h>
#include <FreeDesktop/FreeDesktopInstanceActivation.h>
#include <Platform/QtMainLoop.h>
#include <Waiting.h>

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;
using Claim = InstanceActivation::Claim;

/// An instance with a connection of its own.
struct Instance {
    explicit Instance(const QDBusConnection& connection,
                      const QString& display = QStringLiteral(":0"))
        : bus(connection)
        , activation(display, bus) {}

    MessageBus bus;
    FreeDesktopInstanceActivation activation;
};

/// Claims as another process would: while this thread's event loop runs on.
std::optional<Claim> claimElsewhere(const QDBusConnection& bus, const QString& display) {
    std::atomic<bool> isDone = false;
    std::optional<Claim> claim;
    std::thread other([&] {
        claim = Instance(bus, display).activation.claim();
        isDone = true;
    });
    EXPECT_TRUE(waitUntil([&] { return isDone.load(); }));
    other.join();
    return claim;
}

class FreeDesktopInstanceActivationTest : public ::testing::Test {
protected:
    PrivateBus bus;
};

} // namespace

TEST_F(FreeDesktopInstanceActivationTest, AsksTheFirstInstanceToShowItself) {
    Instance first(bus.connect());
    QSignalSpy requested(&first.activation, &InstanceActivation::activationRequested);
    EXPECT_EQ(first.activation.claim(), Claim::first);
    EXPECT_EQ(requested.size(), 0);
    EXPECT_EQ(claimElsewhere(bus.connect(), QStringLiteral(":0")), Claim::another);
    EXPECT_TRUE(waitUntil([&] { return requested.size() == 1; }));
}

TEST_F(FreeDesktopInstanceActivationTest, CountsTheScreensOfADisplayAsOne) {
    Instance first(bus.connect(), QStringLiteral("host:10.0"));
    EXPECT_EQ(first.activation.claim(), Claim::first);
    EXPECT_EQ(claimElsewhere(bus.connect(), QStringLiteral("host:10.1")), Claim::another);
}

TEST_F(FreeDesktopInstanceActivationTest, LetsEachDisplayHaveItsOwnInstance) {
    Instance first(bus.connect());
    EXPECT_EQ(first.activation.claim(), Claim::first);
    EXPECT_EQ(claimElsewhere(bus.connect(), QStringLiteral(":1")), Claim::first);
}

TEST_F(FreeDesktopInstanceActivationTest, IsFirstAgainOnceTheFormerInstanceHasEnded) {
    {
        Instance former(bus.connect());
        ASSERT_EQ(former.activation.claim(), Claim::first);
    }
    Instance next(bus.connect());
    EXPECT_EQ(next.activation.claim(), Claim::first);
}

TEST_F(FreeDesktopInstanceActivationTest, EndsThoughTheFirstInstanceHangs) {
    Instance first(bus.connect());
    QSignalSpy requested(&first.activation, &InstanceActivation::activationRequested);
    ASSERT_EQ(first.activation.claim(), Claim::first);
    // On this thread: nobody turns the first one's event loop meanwhile.
    Instance second(bus.connect());
    EXPECT_EQ(second.activation.claim(), Claim::another);
    EXPECT_TRUE(waitUntil([&] { return requested.size() == 1; }));
}

TEST_F(FreeDesktopInstanceActivationTest, GivesItsNameUpWithoutWaitingForABusThatHangs) {
    const QDBusConnection own = bus.connect();
    auto instance = std::make_unique<Instance>(own);
    ASSERT_EQ(instance->activation.claim(), Claim::first);
    // A call of the bus would be given up at two seconds.
    EXPECT_TRUE(bus.isDoneWithoutAnAnswer([&] { instance.reset(); }, 1500ms));
    Instance next(bus.connect());
    PrivateBus::takeAllIn(own);
    EXPECT_EQ(next.activation.claim(), Claim::first);
}

TEST_F(FreeDesktopInstanceActivationTest, IsFirstWithoutABus) {
    Instance instance(PrivateBus::absent());
    EXPECT_EQ(instance.activation.claim(), Claim::first);
}

TEST_F(FreeDesktopInstanceActivationTest, IsKnownOnABusThatAnswersAfterItsStart) {
    FakeMainLoop loop;
    bus.pause();
    MessageBus own(loop, bus.address());
    FreeDesktopInstanceActivation first(QStringLiteral(":0"), own);
    QSignalSpy requested(&first, &InstanceActivation::activationRequested);
    EXPECT_EQ(first.claim(), Claim::first) << "as far as anybody can tell";
    bus.resume();
    ASSERT_TRUE(waitUntil([&] { return own.isJoined(); }));
    EXPECT_EQ(claimElsewhere(bus.connect(), QStringLiteral(":0")), Claim::another);
    EXPECT_TRUE(waitUntil([&] { return requested.size() == 1; }));
}

TEST_F(FreeDesktopInstanceActivationTest, IsKnownOnTheNextBusWhereTheFormerEnds) {
    QtMainLoop loop;
    MessageBus own(loop, bus.address());
    ASSERT_TRUE(waitUntil([&] { return own.isJoined(); }));
    FreeDesktopInstanceActivation first(QStringLiteral(":0"), own);
    QSignalSpy requested(&first, &InstanceActivation::activationRequested);
    ASSERT_EQ(first.claim(), Claim::first);
    bus.stop();
    ASSERT_TRUE(waitUntil([&] { return !own.isJoined(); }));
    bus.start();
    ASSERT_TRUE(waitUntil([&] { return own.isJoined(); }));
    EXPECT_EQ(claimElsewhere(bus.connect(), QStringLiteral(":0")), Claim::another);
    EXPECT_TRUE(waitUntil([&] { return requested.size() == 1; }));
}

TEST_F(FreeDesktopInstanceActivationTest, IsNotKnownThoughABusIsJoinedAnewWhereItGaveWay) {
    QtMainLoop loop;
    std::optional<Instance> first(std::in_place, bus.connect());
    ASSERT_EQ(first->activation.claim(), Claim::first);
    MessageBus own(loop, bus.address());
    ASSERT_TRUE(waitUntil([&] { return own.isJoined(); }));
    FreeDesktopInstanceActivation second(QStringLiteral(":0"), own);
    ASSERT_EQ(second.claim(), Claim::another);
    first.reset();
    bus.stop();
    ASSERT_TRUE(waitUntil([&] { return !own.isJoined(); }));
    bus.start();
    ASSERT_TRUE(waitUntil([&] { return own.isJoined(); }));
    EXPECT_EQ(claimElsewhere(bus.connect(), QStringLiteral(":0")), Claim::first);
}

TEST_F(FreeDesktopInstanceActivationTest, MakesAValidBusNameOfAnyDisplayName) {
    const Instance odd(PrivateBus::absent(), QStringLiteral("/tmp/launch-é/org.x:0.2"));
    EXPECT_EQ(odd.activation.serviceName(),
              QStringLiteral("org.tilewright.Tilewright.Display_2ftmp_2flaunch_2d_c3_a9_2forg_2ex"
                             "_3a0"));
}

} // namespace tilewright::testing
