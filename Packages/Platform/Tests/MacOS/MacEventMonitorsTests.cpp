#include "MacTestPlatform.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace tilewright;
using namespace tilewright::testing;
using appkit::MonitorKind;

namespace {

constexpr EventMask dragMask{EventType::leftMouseUp, EventType::leftMouseDragged,
                             EventType::flagsChanged};

class MacEventMonitorsTest : public ::testing::Test {
protected:
    void drag(MonitorKind kind) { appKit.send(kind, {EventType::leftMouseDragged, {}}); }
    void announcePermission() {
        appKit.announce(appkit::Notification::accessibilityPermissionChanged);
    }

    FakeMacSystem system;
    FakeAppKit appKit;
    FakeMainLoop loop;
    int handled = 0;
    EventMonitors::Handler count = [this](const Event&) { ++handled; };
};

} // namespace

TEST_F(MacEventMonitorsTest, InstallOneMonitorOfTheKindAndMask) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    ASSERT_TRUE(monitors.addGlobalMonitor(dragMask, count));
    ASSERT_EQ(appKit.monitors.size(), 1U);
    EXPECT_EQ(appKit.monitors.begin()->second.kind, MonitorKind::global);
    EXPECT_EQ(appKit.monitors.begin()->second.mask.value(), 0x1044U);
    ASSERT_TRUE(monitors.addLocalMonitor({EventType::leftMouseUp}, count));
    EXPECT_EQ(appKit.monitors.rbegin()->second.kind, MonitorKind::local);
    drag(MonitorKind::global);
    EXPECT_EQ(handled, 1);
    drag(MonitorKind::local);
    EXPECT_EQ(handled, 1);
}

TEST_F(MacEventMonitorsTest, AnswerNoneForAMonitorThatIsRefused) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    appKit.refusesGlobalMonitors = true;
    EXPECT_EQ(monitors.addGlobalMonitor(dragMask, count), std::nullopt);
    EXPECT_TRUE(monitors.addLocalMonitor(dragMask, count));
}

TEST_F(MacEventMonitorsTest, RemoveAMonitorOnceAndIgnoreUnknownTokens) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    const auto first = monitors.addGlobalMonitor(dragMask, count);
    const auto second = monitors.addGlobalMonitor(dragMask, count);
    EXPECT_NE(first, second);
    monitors.removeMonitor(*first);
    monitors.removeMonitor(*first);
    EXPECT_EQ(appKit.monitors.size(), 1U);
    drag(MonitorKind::global);
    EXPECT_EQ(handled, 1);
}

TEST_F(MacEventMonitorsTest, MayBeRemovedAndAddedFromWithinAHandler) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    std::optional<MonitorToken> self;
    self = monitors.addGlobalMonitor(dragMask, [&](const Event&) {
        monitors.removeMonitor(*self);
        ASSERT_TRUE(monitors.addGlobalMonitor(dragMask, count));
    });
    drag(MonitorKind::global);
    EXPECT_EQ(handled, 0);
    drag(MonitorKind::global);
    EXPECT_EQ(handled, 1);
}

TEST_F(MacEventMonitorsTest, InstallGlobalMonitorsAfreshOnceThePermissionIsGranted) {
    system.isTrusted = false;
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    const auto global = monitors.addGlobalMonitor(dragMask, count);
    ASSERT_TRUE(monitors.addLocalMonitor(dragMask, count));
    announcePermission();
    system.isTrusted = true;
    EXPECT_EQ(appKit.monitorsInstalled, 2);
    loop.advance(250ms);
    EXPECT_EQ(appKit.monitorsInstalled, 3);
    EXPECT_EQ(appKit.monitors.size(), 2U);
    drag(MonitorKind::global);
    EXPECT_EQ(handled, 1);
    // The token goes on standing for it.
    monitors.removeMonitor(*global);
    drag(MonitorKind::global);
    EXPECT_EQ(handled, 1);
}

TEST_F(MacEventMonitorsTest, LookAgainWhereThePermissionTakesItsTime) {
    system.isTrusted = false;
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    ASSERT_TRUE(monitors.addGlobalMonitor(dragMask, count));
    announcePermission();
    loop.advance(250ms);
    EXPECT_EQ(appKit.monitorsInstalled, 1);
    system.isTrusted = true;
    loop.advance(1s);
    EXPECT_EQ(appKit.monitorsInstalled, 2);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(MacEventMonitorsTest, StopLookingWhenNothingComesOfTheAnnouncement) {
    system.isTrusted = false;
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    ASSERT_TRUE(monitors.addGlobalMonitor(dragMask, count));
    announcePermission();
    announcePermission();
    EXPECT_EQ(loop.activeTimerCount(), 1U);
    loop.advance(10s);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
    EXPECT_EQ(appKit.monitorsInstalled, 1);
}

TEST_F(MacEventMonitorsTest, AreLeftAloneWhereThePermissionWasThereOrIsTakenAway) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    ASSERT_TRUE(monitors.addGlobalMonitor(dragMask, count));
    announcePermission();
    loop.advance(10s);
    EXPECT_EQ(appKit.monitorsInstalled, 1);
    system.isTrusted = false;
    announcePermission();
    loop.advance(10s);
    EXPECT_EQ(appKit.monitorsInstalled, 1);
    // Granted again.
    system.isTrusted = true;
    announcePermission();
    loop.advance(10s);
    EXPECT_EQ(appKit.monitorsInstalled, 2);
}

TEST_F(MacEventMonitorsTest, InstallAMonitorThatWasRefusedOnTheSecondTryAtTheNextGrant) {
    system.isTrusted = false;
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    ASSERT_TRUE(monitors.addGlobalMonitor(dragMask, count));
    appKit.refusesGlobalMonitors = true;
    system.isTrusted = true;
    announcePermission();
    loop.advance(250ms);
    EXPECT_TRUE(appKit.monitors.empty());
    appKit.refusesGlobalMonitors = false;
    system.isTrusted = false;
    announcePermission();
    loop.advance(250ms);
    system.isTrusted = true;
    announcePermission();
    loop.advance(250ms);
    drag(MonitorKind::global);
    EXPECT_EQ(handled, 1);
}

TEST_F(MacEventMonitorsTest, AreAllGoneAtTheEnd) {
    {
        const MacAccessibility accessibility(loop);
        MacEventMonitors monitors(accessibility);
        ASSERT_TRUE(monitors.addGlobalMonitor(dragMask, count));
        announcePermission();
    }
    EXPECT_TRUE(appKit.monitors.empty());
    EXPECT_TRUE(appKit.observers.empty());
    loop.advance(10s);
    EXPECT_EQ(handled, 0);
}
