#include "PrivateBus.h"

#include <FreeDesktop/FreeDesktopInstanceActivation.h>
#include <Waiting.h>

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;
using Claim = InstanceActivation::Claim;

/// Claims as another process would: while this thread's event loop runs on.
std::optional<Claim> claimElsewhere(const QDBusConnection& bus, const QString& display) {
    std::atomic<bool> isDone = false;
    std::optional<Claim> claim;
    std::thread other([&] {
        FreeDesktopInstanceActivation instance(display, bus);
        claim = instance.claim();
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
    FreeDesktopInstanceActivation first(QStringLiteral(":0"), bus.connect());
    QSignalSpy requested(&first, &InstanceActivation::activationRequested);
    EXPECT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(requested.size(), 0);
    EXPECT_EQ(claimElsewhere(bus.connect(), QStringLiteral(":0")), Claim::another);
    EXPECT_TRUE(waitUntil([&] { return requested.size() == 1; }));
}

TEST_F(FreeDesktopInstanceActivationTest, CountsTheScreensOfADisplayAsOne) {
    FreeDesktopInstanceActivation first(QStringLiteral("host:10.0"), bus.connect());
    EXPECT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(claimElsewhere(bus.connect(), QStringLiteral("host:10.1")), Claim::another);
}

TEST_F(FreeDesktopInstanceActivationTest, LetsEachDisplayHaveItsOwnInstance) {
    FreeDesktopInstanceActivation first(QStringLiteral(":0"), bus.connect());
    EXPECT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(claimElsewhere(bus.connect(), QStringLiteral(":1")), Claim::first);
}

TEST_F(FreeDesktopInstanceActivationTest, IsFirstAgainOnceTheFormerInstanceHasEnded) {
    {
        FreeDesktopInstanceActivation former(QStringLiteral(":0"), bus.connect());
        ASSERT_EQ(former.claim(), Claim::first);
    }
    FreeDesktopInstanceActivation next(QStringLiteral(":0"), bus.connect());
    EXPECT_EQ(next.claim(), Claim::first);
}

TEST_F(FreeDesktopInstanceActivationTest, EndsThoughTheFirstInstanceHangs) {
    FreeDesktopInstanceActivation first(QStringLiteral(":0"), bus.connect());
    QSignalSpy requested(&first, &InstanceActivation::activationRequested);
    ASSERT_EQ(first.claim(), Claim::first);
    // On this thread: nobody turns the first one's event loop meanwhile.
    FreeDesktopInstanceActivation second(QStringLiteral(":0"), bus.connect());
    EXPECT_EQ(second.claim(), Claim::another);
    EXPECT_TRUE(waitUntil([&] { return requested.size() == 1; }));
}

TEST_F(FreeDesktopInstanceActivationTest, GivesItsNameUpWithoutWaitingForABusThatHangs) {
    const QDBusConnection own = bus.connect();
    auto instance = std::make_unique<FreeDesktopInstanceActivation>(QStringLiteral(":0"), own);
    ASSERT_EQ(instance->claim(), Claim::first);
    // A call of the bus would be given up at two seconds.
    EXPECT_TRUE(bus.isDoneWithoutAnAnswer([&] { instance.reset(); }, 1500ms));
    FreeDesktopInstanceActivation next(QStringLiteral(":0"), bus.connect());
    PrivateBus::takeAllIn(own);
    EXPECT_EQ(next.claim(), Claim::first);
}

TEST_F(FreeDesktopInstanceActivationTest, IsFirstWithoutABus) {
    FreeDesktopInstanceActivation instance(QStringLiteral(":0"), PrivateBus::absent());
    EXPECT_EQ(instance.claim(), Claim::first);
}

TEST_F(FreeDesktopInstanceActivationTest, MakesAValidBusNameOfAnyDisplayName) {
    const FreeDesktopInstanceActivation odd(QStringLiteral("/tmp/launch-é/org.x:0.2"),
                                            PrivateBus::absent());
    EXPECT_EQ(odd.serviceName(),
              QStringLiteral("org.tilewright.Tilewright.Display_2ftmp_2flaunch_2d_c3_a9_2forg_2ex"
                             "_3a0"));
}

} // namespace tilewright::testing
