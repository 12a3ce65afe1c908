#include <FakePlatform.h>
#include <KeepAwake/KeepAwakeManager.h>
#include <Tilewright/AppDelegate.h>

#include <gtest/gtest.h>
#include <thread>

namespace tilewright::testing {
namespace {

struct AppDelegateTest : public ::testing::Test {
    FakeDesktop desktop;
    FakePlatform& platform = desktop.platform;
    AppDelegate delegate;
};

} // namespace

TEST_F(AppDelegateTest, AsksForPermissionOnceAtAFirstLaunchWithoutTrust) {
    platform.fakeAccessibility.trusted = false;
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(platform.fakeAccessibility.trustRequests, 1);
    EXPECT_FALSE(platform.fakeEventMonitors.monitors.empty()) << "and works on all the same";
}

TEST_F(AppDelegateTest, DoesNotAskWhereThePermissionIsGranted) {
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(platform.fakeAccessibility.trustRequests, 0);
    EXPECT_FALSE(platform.fakeEventMonitors.monitors.empty());
}

TEST_F(AppDelegateTest, AsksBeforeItWatchesAnything) {
    platform.fakeAccessibility.trusted = false;
    bool wasWatching = false;
    platform.fakeAccessibility.whenTrustIsRequested = [&] {
        wasWatching = !platform.fakeEventMonitors.installed.empty();
    };
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(platform.fakeAccessibility.trustRequests, 1);
    EXPECT_FALSE(wasWatching) << "while it asked";
    EXPECT_FALSE(platform.fakeEventMonitors.installed.empty()) << "afterwards";
}

TEST_F(AppDelegateTest, EndsTheSessionBeforeItStopsWatchingWhenTheApplicationTerminates) {
    delegate.applicationDidFinishLaunching();
    KeepAwakeManager::shared().activate(KeepAwakeSession::indefinite());
    ASSERT_EQ(platform.fakePowerAssertions.held.size(), 1U);
    bool wasWatching = false;
    QObject::connect(&KeepAwakeManager::shared(), &ObservableObject::objectWillChange,
                     [&] { wasWatching = !platform.fakeEventMonitors.monitors.empty(); });
    delegate.applicationWillTerminate();
    EXPECT_TRUE(wasWatching) << "while the session ended";
    EXPECT_TRUE(platform.fakePowerAssertions.held.empty());
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
}

TEST_F(AppDelegateTest, TerminatesWithoutASession) {
    delegate.applicationDidFinishLaunching();
    delegate.applicationWillTerminate();
    EXPECT_TRUE(platform.fakePowerAssertions.releases.empty());
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
}

TEST(AppDelegateDeathTest, AbortsOffTheMainThread) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto elsewhere = [](auto operation) {
        std::thread([operation] {
            AppDelegate delegate;
            (delegate.*operation)();
        }).join();
    };
    EXPECT_DEATH(elsewhere(&AppDelegate::applicationDidFinishLaunching), "main thread");
    EXPECT_DEATH(elsewhere(&AppDelegate::applicationWillTerminate), "main thread");
}

} // namespace tilewright::testing
