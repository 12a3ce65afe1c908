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
    using Recorded = std::vector<std::pair<EventType, ModifierFlags>>;
    Recorded recorded;
    EventMonitors::Handler record = [this](const Event& event) {
        recorded.emplace_back(event.type, event.modifierFlags);
    };
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

TEST_F(MacEventMonitorsTest, TellOfAModifierWhoseReleaseNeverArrivedBeforeTheNextEvent) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    ASSERT_TRUE(monitors.addGlobalMonitor(dragMask, record));
    appKit.send(MonitorKind::global, {EventType::flagsChanged, {ModifierFlag::control}});
    // The screen is locked with the key held, and unlocked later.
    appKit.send(MonitorKind::global, {EventType::leftMouseDragged, {}});
    appKit.send(MonitorKind::global, {EventType::leftMouseUp, {}});
    EXPECT_EQ(recorded, (Recorded{{EventType::flagsChanged, {ModifierFlag::control}},
                                  {EventType::flagsChanged, {}},
                                  {EventType::leftMouseDragged, {}},
                                  {EventType::leftMouseUp, {}}}));
}

TEST_F(MacEventMonitorsTest, TellOfAModifierWhosePressNeverArrived) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    ASSERT_TRUE(monitors.addLocalMonitor(dragMask, record));
    const ModifierFlags shift{ModifierFlag::shift};
    appKit.send(MonitorKind::local, {EventType::leftMouseDragged, shift});
    appKit.send(MonitorKind::local, {EventType::leftMouseDragged, shift});
    EXPECT_EQ(recorded, (Recorded{{EventType::flagsChanged, shift},
                                  {EventType::leftMouseDragged, shift},
                                  {EventType::leftMouseDragged, shift}}));
}

TEST_F(MacEventMonitorsTest, TakeNoOtherBitsOfAnEventForModifiers) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    ASSERT_TRUE(monitors.addGlobalMonitor(dragMask, record));
    // Which of two keys it is, and that the keyboard has a caps lock, only keys' events tell.
    appKit.send(MonitorKind::global, {EventType::flagsChanged, ModifierFlags(0x50101)});
    appKit.send(MonitorKind::global, {EventType::leftMouseDragged, ModifierFlags(0x40000)});
    EXPECT_EQ(recorded.size(), 2U);
}

TEST_F(MacEventMonitorsTest, TellEachMonitorOfAChangeThatOnlyAnotherOneCouldHear) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    ASSERT_TRUE(monitors.addGlobalMonitor({EventType::leftMouseDown}, count));
    ASSERT_TRUE(monitors.addGlobalMonitor({EventType::flagsChanged}, record));
    ASSERT_TRUE(monitors.addLocalMonitor({EventType::flagsChanged}, count));
    const ModifierFlags option{ModifierFlag::option};
    appKit.send(MonitorKind::global, {EventType::leftMouseDown, option});
    EXPECT_EQ(recorded, (Recorded{{EventType::flagsChanged, option}}));
    EXPECT_EQ(handled, 1) << "an event of other applications is none of a local monitor's";
}

TEST_F(MacEventMonitorsTest, KnowTheModifiersFromEitherKindOfMonitor) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    ASSERT_TRUE(monitors.addGlobalMonitor(dragMask, record));
    ASSERT_TRUE(monitors.addLocalMonitor(dragMask, record));
    appKit.send(MonitorKind::local, {EventType::flagsChanged, {ModifierFlag::control}});
    appKit.send(MonitorKind::global, {EventType::leftMouseDragged, {}});
    EXPECT_EQ(recorded, (Recorded{{EventType::flagsChanged, {ModifierFlag::control}},
                                  {EventType::flagsChanged, {}},
                                  {EventType::leftMouseDragged, {}}}));
}

TEST_F(MacEventMonitorsTest, CallNoMonitorThatWasRemovedWhenItWasToldOfTheModifiers) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    std::optional<MonitorToken> self;
    self = monitors.addGlobalMonitor(dragMask, [&](const Event& event) {
        record(event);
        monitors.removeMonitor(*self);
    });
    appKit.send(MonitorKind::global, {EventType::leftMouseDragged, {ModifierFlag::control}});
    EXPECT_EQ(recorded, (Recorded{{EventType::flagsChanged, {ModifierFlag::control}}}));
}

TEST_F(MacEventMonitorsTest, KeepTheProgramFromBeingSlowedDownDuringADragWithAModifier) {
    const MacAccessibility accessibility(loop);
    MacEventMonitors monitors(accessibility);
    const auto token = monitors.addGlobalMonitor(dragMask, count);
    const ModifierFlags control{ModifierFlag::control};
    drag(MonitorKind::global);
    appKit.send(MonitorKind::global, {EventType::flagsChanged, control});
    EXPECT_EQ(appKit.activitiesBegun, 0) << "neither a plain drag nor a key is one";
    appKit.send(MonitorKind::global, {EventType::leftMouseDragged, control});
    appKit.send(MonitorKind::global, {EventType::leftMouseDragged, control});
    drag(MonitorKind::global);
    EXPECT_EQ(appKit.activities.size(), 1U);
    appKit.send(MonitorKind::global, {EventType::leftMouseUp, {}});
    EXPECT_TRUE(appKit.activities.empty());
    appKit.send(MonitorKind::global, {EventType::leftMouseDragged, control});
    EXPECT_EQ(appKit.activitiesBegun, 2);
    monitors.removeMonitor(*token);
    EXPECT_TRUE(appKit.activities.empty());
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
