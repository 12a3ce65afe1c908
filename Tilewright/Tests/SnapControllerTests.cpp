#include "SnapFixture.h"

#include <TilewrightUI/SnapOverlayView.h>

#include <thread>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

class SnapControllerTest : public SnapFixture {
protected:
    using Kind = FakeEventMonitors::Kind;

    struct State {
        bool isModifierDown;
        bool isDragging;
        bool overlayVisible;
    };
    static constexpr State idle{false, false, false};
    static constexpr State armed{true, false, false};
    static constexpr State snapping{true, true, true};
    static constexpr State orphanDrag{false, true, false};
    /// The modifier is down and a drag is on, but the overlay has not been shown again.
    static constexpr State hiddenDrag{true, true, false};

    void expectState(const State& expected) {
        EXPECT_EQ(controller().isModifierDown(), expected.isModifierDown);
        EXPECT_EQ(controller().isDragging(), expected.isDragging);
        EXPECT_EQ(controller().overlayVisible(), expected.overlayVisible);
        EXPECT_EQ(isOverlayShown(), expected.overlayVisible);
        if (!expected.overlayVisible) {
            EXPECT_EQ(model().highlightedZoneID(), std::nullopt);
        }
    }
    [[nodiscard]] std::size_t surfaceCalls(const std::string& name) const {
        const auto& calls = platform.overlay.calls;
        return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), name));
    }
    /// The zone's frame on the first display, in Accessibility screen space.
    static void expectInZoneOfFirst(const FakeElement& element, const Zone& zone) {
        EXPECT_NEAR(element.position.x, zone.x * 1440, 1e-6);
        EXPECT_NEAR(element.position.y, 25 + (zone.y * 875), 1e-6);
        EXPECT_NEAR(element.size.width, zone.width * 1440, 1e-6);
        EXPECT_NEAR(element.size.height, zone.height * 875, 1e-6);
    }
    static void expectInZoneOfSecond(const FakeElement& element, const Zone& zone) {
        EXPECT_NEAR(element.position.x, 1500 + (zone.x * 1920), 1e-6);
        EXPECT_NEAR(element.position.y, 20 + (zone.y * 1080), 1e-6);
        EXPECT_NEAR(element.size.width, zone.width * 1920, 1e-6);
        EXPECT_NEAR(element.size.height, zone.height * 1080, 1e-6);
    }
};

} // namespace

// Monitors.

TEST_F(SnapControllerTest, WatchesOtherApplicationsAndItselfForThreeEvents) {
    ASSERT_EQ(platform.fakeEventMonitors.monitors.size(), 2U);
    int globals = 0;
    for (const auto& [token, monitor] : platform.fakeEventMonitors.monitors) {
        EXPECT_EQ(monitor.mask.value(), 0x1044U);
        globals += monitor.kind == Kind::global ? 1 : 0;
    }
    EXPECT_EQ(globals, 1);
}

TEST_F(SnapControllerTest, RemovesItsMonitorsBeforeItInstallsNewOnes) {
    const auto before = platform.fakeEventMonitors.installed;
    controller().start();
    EXPECT_EQ(platform.fakeEventMonitors.removed, before);
    EXPECT_EQ(platform.fakeEventMonitors.monitors.size(), 2U);
    EXPECT_EQ(platform.fakeEventMonitors.installed.size(), 4U);
}

TEST_F(SnapControllerTest, RemovesTheGlobalMonitorsBeforeTheLocalOnes) {
    const auto monitors = platform.fakeEventMonitors.monitors;
    controller().stop();
    const auto& removed = platform.fakeEventMonitors.removed;
    ASSERT_EQ(removed.size(), 2U);
    EXPECT_EQ(monitors.at(removed[0]).kind, Kind::global);
    EXPECT_EQ(monitors.at(removed[1]).kind, Kind::local);
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
    controller().stop();
    EXPECT_EQ(removed.size(), 2U);
}

TEST_F(SnapControllerTest, GoesOnWithTheMonitorsThatTheDesktopGrants) {
    controller().stop();
    platform.fakeEventMonitors.removed.clear();
    platform.fakeEventMonitors.refusesGlobal = true;
    controller().start();
    ASSERT_EQ(platform.fakeEventMonitors.monitors.size(), 1U);
    EXPECT_EQ(platform.fakeEventMonitors.monitors.begin()->second.kind, Kind::local);
    platform.fakeEventMonitors.refusesLocal = true;
    controller().start();
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
    controller().stop();
    EXPECT_EQ(platform.fakeEventMonitors.removed.size(), 1U);
}

TEST_F(SnapControllerTest, HeedsEventsOfItsOwnWindowsLikeThoseOfOthers) {
    const auto sendLocally = [this](EventType type, ModifierFlags held) {
        platform.fakeEventMonitors.send(Kind::local, {type, held});
    };
    sendLocally(EventType::flagsChanged, {ModifierFlag::control});
    platform.fakePointer.at = inPrimary;
    sendLocally(EventType::leftMouseDragged, {});
    expectState(snapping);
    sendLocally(EventType::leftMouseUp, {});
    expectState(armed);
    expectInZoneOfFirst(*window, bento(0));
}

TEST_F(SnapControllerTest, IgnoresEventsOfOtherTypes) {
    pressModifier();
    dragTo(inPrimary);
    const auto handler = platform.fakeEventMonitors.monitors.begin()->second.handler;
    handler({EventType::leftMouseDown, {}});
    handler({EventType::rightMouseDown, {}});
    expectState(snapping);
}

TEST_F(SnapControllerTest, EndsTheProcessWhenAnEventComesOnAnotherThread) {
    const auto handler = platform.fakeEventMonitors.monitors.begin()->second.handler;
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            std::thread other([&] { handler({EventType::leftMouseUp, {}}); });
            other.join();
        },
        "must be called on the main thread");
}

TEST_F(SnapControllerTest, HidesTheOverlayWhenItStops) {
    pressModifier();
    dragTo(inPrimary);
    controller().stop();
    EXPECT_FALSE(isOverlayShown());
    EXPECT_FALSE(controller().overlayVisible());
    EXPECT_EQ(model().highlightedZoneID(), std::nullopt);
    EXPECT_TRUE(isUntouched(*window));
}

TEST(SnapController, LeavesNothingBehindWhenThePlatformGoes) {
    FakePlatform platform;
    platform.fakeScreens.setScreens({makeScreen()});
    {
        const Platform::Installation installation(platform);
        SnapController::shared().start();
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global,
                                        {EventType::flagsChanged, {ModifierFlag::control}});
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global,
                                        {EventType::leftMouseDragged, {}});
        EXPECT_TRUE(platform.overlay.isVisible);
    }
    EXPECT_FALSE(platform.overlay.isVisible);
    EXPECT_EQ(platform.overlay.view, nullptr);
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
}

// States.

TEST_F(SnapControllerTest, IsIdleAtFirstWithBentoBoxInItsOverlay) {
    expectState(idle);
    EXPECT_EQ(model().layout(), ZoneLayout::bentoBox());
    EXPECT_EQ(platform.overlay.madeCount, 0);
}

TEST_F(SnapControllerTest, IsArmedWhileTheModifierIsHeld) {
    pressModifier();
    expectState(armed);
    releaseModifier();
    expectState(idle);
    EXPECT_EQ(platform.overlay.madeCount, 0);
}

TEST_F(SnapControllerTest, ShowsAndSnapsNothingForAClickWithoutADrag) {
    pressModifier();
    release();
    expectState(armed);
    EXPECT_EQ(platform.overlay.madeCount, 0);
    EXPECT_TRUE(isUntouched(*window));
    EXPECT_TRUE(isUntouched(*focused));
}

TEST_F(SnapControllerTest, SnapsNothingForADragWithoutTheModifier) {
    dragTo(inPrimary);
    dragTo(inTopRight);
    expectState(idle);
    release();
    expectState(idle);
    EXPECT_FALSE(lookedAt);
    EXPECT_TRUE(isUntouched(*window));
}

TEST_F(SnapControllerTest, ShowsTheOverlayFromTheFirstDraggedEventOn) {
    pressModifier();
    dragTo(inPrimary);
    expectState(snapping);
    EXPECT_EQ(platform.overlay.screen, first);
    EXPECT_EQ(model().layout(), ZoneLayout::bentoBox());
    EXPECT_EQ(model().highlightedZoneID(), bento(0).id);
    EXPECT_EQ(platform.overlay.calls.back(), "orderFront");
    // Placed before it is shown: it never flashes in the wrong place.
    EXPECT_EQ(platform.overlay.calls[platform.overlay.calls.size() - 2], "setScreen");
}

TEST_F(SnapControllerTest, SnapsIntoTheHighlightedZoneOnRelease) {
    pressModifier();
    dragTo(inPrimary);
    dragTo(inTopRight);
    expectState(snapping);
    EXPECT_EQ(model().highlightedZoneID(), bento(1).id);
    release();
    expectState(armed);
    expectInZoneOfFirst(*window, bento(1));
    EXPECT_TRUE(isUntouched(*focused));
}

TEST_F(SnapControllerTest, SnapsNextTimeToo) {
    pressModifier();
    dragTo(inPrimary);
    release();
    dragTo(inTopRight);
    expectState(snapping);
    release();
    releaseModifier();
    expectState(idle);
    expectInZoneOfFirst(*window, bento(1));
    EXPECT_EQ(platform.overlay.madeCount, 1);
}

TEST_F(SnapControllerTest, HidesTheOverlayAndSnapsNothingWhenTheModifierIsReleasedFirst) {
    pressModifier();
    dragTo(inPrimary);
    releaseModifier();
    expectState(orphanDrag);
    dragTo(inTopRight);
    expectState(orphanDrag);
    release();
    expectState(idle);
    EXPECT_TRUE(isUntouched(*window));
    EXPECT_TRUE(isUntouched(*focused));
}

TEST_F(SnapControllerTest, CommitsToTheFocusedWindowAfterTheModifierWasPressedAgain) {
    pressModifier();
    dragTo(inPrimary);
    releaseModifier();
    lookedAt.reset();
    pressModifier();
    expectState(hiddenDrag);
    dragTo(inTopRight);
    expectState(snapping);
    // The window under the pointer is not looked for again.
    EXPECT_FALSE(lookedAt);
    release();
    expectState(armed);
    EXPECT_TRUE(isUntouched(*window));
    expectInZoneOfFirst(*focused, bento(1));
}

TEST_F(SnapControllerTest, SnapsNothingWhenReleasedBeforeTheOverlayShowsAgain) {
    pressModifier();
    dragTo(inPrimary);
    releaseModifier();
    pressModifier();
    expectState(hiddenDrag);
    release();
    expectState(armed);
    EXPECT_TRUE(isUntouched(*window));
    EXPECT_TRUE(isUntouched(*focused));
}

TEST_F(SnapControllerTest, BecomesAnOrphanDragFromAHiddenOneToo) {
    pressModifier();
    dragTo(betweenScreens);
    expectState(hiddenDrag);
    releaseModifier();
    expectState(orphanDrag);
    release();
    expectState(idle);
}

TEST_F(SnapControllerTest, CapturesADragThatBeganWithoutTheModifier) {
    dragTo(inPrimary);
    pressModifier();
    expectState(armed);
    dragTo(inTopRight);
    expectState(snapping);
    EXPECT_EQ(lookedAt, (AXPoint{inTopRight.x, 900 - inTopRight.y}));
    release();
    expectInZoneOfFirst(*window, bento(1));
}

TEST_F(SnapControllerTest, StaysArmedWhileTheModifierIsHeldOverSeveralKeys) {
    pressModifier();
    flags({ModifierFlag::control, ModifierFlag::shift});
    expectState(armed);
    dragTo(inPrimary);
    flags({ModifierFlag::control});
    expectState(snapping);
    flags({ModifierFlag::shift});
    expectState(orphanDrag);
}

TEST_F(SnapControllerTest, EndsEachDragWithItsRelease) {
    // Even where the press of the modifier was never seen, or its release.
    release();
    expectState(idle);
    pressModifier();
    dragTo(inPrimary);
    pressModifier();
    expectState(snapping);
    release();
    release();
    expectState(armed);
}

// The window.

TEST_F(SnapControllerTest, LooksForTheWindowUnderThePointerOncePerDrag) {
    pressModifier();
    dragTo(inPrimary);
    EXPECT_EQ(lookedAt, (AXPoint{400, 500}));
    lookedAt.reset();
    dragTo(inTopRight);
    EXPECT_FALSE(lookedAt);
    release();
    dragTo(inTopRight);
    EXPECT_TRUE(lookedAt);
}

TEST_F(SnapControllerTest, MovesTheFocusedWindowWhereNoneIsUnderThePointer) {
    accessibility.elementAt = nullptr;
    pressModifier();
    dragTo(inPrimary);
    expectState(snapping);
    release();
    expectInZoneOfFirst(*focused, bento(0));
}

TEST_F(SnapControllerTest, MovesTheWindowOfTheDragsStartAcrossDisplays) {
    pressModifier();
    dragTo(inPrimary);
    const auto start = window;
    window = accessibility.makeWindow("another");
    dragTo(inRightHalfOfSecond);
    release();
    expectInZoneOfSecond(*start, halves(1));
    EXPECT_TRUE(isUntouched(*window));
}

TEST_F(SnapControllerTest, TakesNoNoticeOfAWindowThatVanishedDuringTheDrag) {
    pressModifier();
    dragTo(inPrimary);
    window->isGone = true;
    release();
    expectState(armed);
    EXPECT_EQ(accessibility.trustRequests, 0);
    EXPECT_TRUE(isUntouched(*focused));
}

// Displays and zones.

TEST_F(SnapControllerTest, MovesTheOverlayToTheDisplayUnderThePointer) {
    pressModifier();
    dragTo(inPrimary);
    dragTo(inLeftHalfOfSecond);
    expectState(snapping);
    EXPECT_EQ(platform.overlay.screen, second);
    EXPECT_EQ(model().layout(), ZoneLayout::halves());
    EXPECT_EQ(model().highlightedZoneID(), halves(0).id);
    dragTo(inPrimary);
    EXPECT_EQ(platform.overlay.screen, first);
    EXPECT_EQ(model().layout(), ZoneLayout::bentoBox());
    // It is moved, not shown once more.
    EXPECT_EQ(surfaceCalls("orderFront"), 1U);
    EXPECT_EQ(platform.overlay.madeCount, 1);
}

TEST_F(SnapControllerTest, TakesTheFirstOfDisplaysThatOverlap) {
    const auto mirror = makeScreen(second->values);
    platform.fakeScreens.setScreens({first, second, mirror});
    pressModifier();
    dragTo(inLeftHalfOfSecond);
    EXPECT_EQ(platform.overlay.screen, second);
}

TEST_F(SnapControllerTest, LoadsTheLayoutOnlyOnAChangeOfDisplay) {
    pressModifier();
    dragTo(inPrimary);
    LayoutStore::shared().assign(ZoneLayout::thirds(), *first);
    dragTo(inTopRight);
    EXPECT_EQ(model().layout(), ZoneLayout::bentoBox());
    EXPECT_EQ(surfaceCalls("setScreen"), 1U);
    dragTo(inLeftHalfOfSecond);
    dragTo(inPrimary);
    EXPECT_EQ(model().layout(), ZoneLayout::thirds());
    EXPECT_EQ(surfaceCalls("setScreen"), 3U);
}

TEST_F(SnapControllerTest, LoadsTheLayoutAfreshForEachShowing) {
    pressModifier();
    dragTo(inPrimary);
    release();
    LayoutStore::shared().assign(ZoneLayout::thirds(), *first);
    dragTo(inPrimary);
    EXPECT_EQ(model().layout(), ZoneLayout::thirds());
    EXPECT_EQ(surfaceCalls("setScreen"), 2U);
}

TEST_F(SnapControllerTest, KeepsTheLayoutWhileHidden) {
    pressModifier();
    dragTo(inLeftHalfOfSecond);
    release();
    EXPECT_EQ(model().layout(), ZoneLayout::halves());
}

TEST_F(SnapControllerTest, FollowsADisplayThatIsReplacedByAnother) {
    pressModifier();
    dragTo(inPrimary);
    const auto resized = makeScreen(first->values);
    platform.fakeScreens.change({resized, second});
    dragTo(inPrimary);
    EXPECT_EQ(platform.overlay.screen, resized);
    EXPECT_EQ(surfaceCalls("setScreen"), 2U);
}

TEST_F(SnapControllerTest, AnnouncesTheHighlightOnlyWhenItChanges) {
    pressModifier();
    dragTo(inPrimary);
    int announced = 0;
    const QObject observer;
    QObject::connect(&model(), &ObservableObject::objectWillChange, &observer,
                     [&] { ++announced; });
    for (int x = 10; x < 800; ++x)
        dragTo({static_cast<double>(x), 300});
    EXPECT_EQ(announced, 0);
    dragTo(inTopRight);
    EXPECT_EQ(announced, 1);
    dragTo(onPanel);
    EXPECT_EQ(announced, 2);
    dragTo({onPanel.x + 10, onPanel.y});
    EXPECT_EQ(announced, 2);
}

TEST_F(SnapControllerTest, SnapsNothingOverAPanel) {
    pressModifier();
    dragTo(inPrimary);
    dragTo(onPanel);
    expectState(snapping);
    EXPECT_EQ(model().highlightedZoneID(), std::nullopt);
    release();
    expectState(armed);
    EXPECT_TRUE(isUntouched(*window));
    EXPECT_TRUE(isUntouched(*focused));
}

TEST_F(SnapControllerTest, SnapsNothingInAGapBetweenZones) {
    ZoneLayout layout = ZoneLayout::halves();
    layout.id = QUuid::createUuid();
    layout.isBuiltIn = false;
    layout.zones[0].width = 0.3;
    LayoutStore::shared().addCustomLayout(layout);
    LayoutStore::shared().assign(layout, *second);
    pressModifier();
    dragTo(inLeftHalfOfSecond);
    EXPECT_EQ(model().highlightedZoneID(), layout.zones[0].id);
    dragTo({1500 + (0.4 * 1920), 300});
    expectState(snapping);
    EXPECT_EQ(model().highlightedZoneID(), std::nullopt);
    release();
    EXPECT_TRUE(isUntouched(*window));
    expectState(armed);
}

TEST_F(SnapControllerTest, KeepsTheOverlayAsItWasBetweenDisplays) {
    pressModifier();
    dragTo(inPrimary);
    dragTo(betweenScreens);
    expectState(snapping);
    EXPECT_EQ(platform.overlay.screen, first);
    EXPECT_EQ(model().highlightedZoneID(), bento(0).id);
    release();
    expectInZoneOfFirst(*window, bento(0));
}

TEST_F(SnapControllerTest, ShowsNothingForADragThatStartsBetweenDisplays) {
    pressModifier();
    dragTo(betweenScreens);
    expectState(hiddenDrag);
    EXPECT_EQ(platform.overlay.madeCount, 0);
    release();
    expectState(armed);
    EXPECT_TRUE(isUntouched(*window));
    EXPECT_TRUE(isUntouched(*focused));
}

TEST_F(SnapControllerTest, ShowsTheOverlayOnceADragFromBetweenDisplaysEntersOne) {
    pressModifier();
    dragTo(betweenScreens);
    dragTo(inPrimary);
    expectState(snapping);
    release();
    // The window was captured at the first dragged event.
    expectInZoneOfFirst(*window, bento(0));
}

TEST_F(SnapControllerTest, TreatsTheMaximumEdgesOfADisplayAsOutside) {
    pressModifier();
    dragTo({1440, 400});
    expectState(hiddenDrag);
    dragTo({1439.5, 400});
    expectState(snapping);
}

TEST_F(SnapControllerTest, SnapsOnTheLastDisplayWhenAllAreGone) {
    pressModifier();
    dragTo(inPrimary);
    platform.fakeScreens.change({});
    dragTo(inTopRight);
    expectState(snapping);
    EXPECT_EQ(model().highlightedZoneID(), bento(0).id);
    release();
    expectState(armed);
    expectInZoneOfFirst(*window, bento(0));
}

TEST_F(SnapControllerTest, SnapsIntoTheFirstZoneThatBearsTheHighlightedId) {
    ZoneLayout layout = ZoneLayout::halves();
    layout.id = QUuid::createUuid();
    layout.isBuiltIn = false;
    layout.zones[1].id = layout.zones[0].id;
    LayoutStore::shared().addCustomLayout(layout);
    LayoutStore::shared().assign(layout, *second);
    pressModifier();
    dragTo(inRightHalfOfSecond);
    release();
    expectInZoneOfSecond(*window, layout.zones[0]);
}

TEST_F(SnapControllerTest, ShowsAnEmptyOverlayForALayoutWithoutZones) {
    ZoneLayout layout = ZoneLayout::halves();
    layout.id = QUuid::createUuid();
    layout.isBuiltIn = false;
    layout.zones.clear();
    LayoutStore::shared().addCustomLayout(layout);
    LayoutStore::shared().assign(layout, *second);
    pressModifier();
    dragTo(inRightHalfOfSecond);
    expectState(snapping);
    release();
    EXPECT_TRUE(isUntouched(*window));
}

// The modifier.

TEST_F(SnapControllerTest, FollowsEachOfTheFourModifiers) {
    for (const SnapModifier modifier : SnapModifiers::allCases) {
        SnapSettings::shared().setModifier(modifier);
        for (const SnapModifier held : SnapModifiers::allCases) {
            flags({eventFlag(held)});
            dragTo(inPrimary);
            expectState(held == modifier ? snapping : idle);
            release();
            flags({});
        }
    }
}

TEST_F(SnapControllerTest, AppliesAChangedModifierFromTheNextKeyChangeOn) {
    pressModifier();
    SnapSettings::shared().setModifier(SnapModifier::option);
    dragTo(inPrimary);
    expectState(snapping);
    flags({ModifierFlag::control, ModifierFlag::shift});
    expectState(orphanDrag);
    release();
    flags({ModifierFlag::option});
    expectState(armed);
}

// Permission.

TEST_F(SnapControllerTest, AsksForThePermissionOnceInARun) {
    accessibility.trusted = false;
    for (int drag = 0; drag < 3; ++drag) {
        pressModifier();
        dragTo(inPrimary);
        release();
        expectState(armed);
        EXPECT_EQ(accessibility.trustRequests, 1);
    }
    // Also not after a start anew.
    controller().start();
    dragTo(inPrimary);
    release();
    EXPECT_EQ(accessibility.trustRequests, 1);
    EXPECT_TRUE(isUntouched(*window));
}

TEST_F(SnapControllerTest, AsksForThePermissionOnlyWhenASnapFailsForLackOfIt) {
    accessibility.trusted = false;
    pressModifier();
    dragTo(inPrimary);
    dragTo(onPanel);
    release();
    EXPECT_EQ(accessibility.trustRequests, 0);
    accessibility.elementAt = nullptr;
    dragTo(inPrimary);
    release();
    EXPECT_EQ(accessibility.trustRequests, 1);
}

TEST_F(SnapControllerTest, DropsEveryOtherErrorSilently) {
    const auto snap = [this] {
        pressModifier();
        dragTo(inPrimary);
        release();
        expectState(armed);
        EXPECT_EQ(accessibility.trustRequests, 0);
    };
    window->writeErrors[AXAttribute::position] = {AXError::cannotComplete};
    snap();
    accessibility.positionValuesFail = true;
    snap();
    accessibility.positionValuesFail = false;
    accessibility.elementAt = nullptr;
    accessibility.systemWide->elements.clear();
    snap();
    platform.fakeWorkspace.frontmost = 77;
    snap();
    // And still asks for the permission when that is what lacks, later.
    accessibility.trusted = false;
    pressModifier();
    dragTo(inPrimary);
    release();
    EXPECT_EQ(accessibility.trustRequests, 1);
}

TEST_F(SnapControllerTest, SnapsBeforeItHidesTheOverlay) {
    pressModifier();
    dragTo(inPrimary);
    accessibility.calls.clear();
    std::size_t writesWhenHidden = 0;
    const QObject observer;
    QObject::connect(&model(), &ObservableObject::objectWillChange, &observer,
                     [&] { writesWhenHidden = accessibility.calls.size(); });
    release();
    EXPECT_GT(writesWhenHidden, 0U);
    EXPECT_EQ(writesWhenHidden, accessibility.calls.size());
}

// The overlay.

TEST_F(SnapControllerTest, ShowsAViewOfItsModelInTheOverlay) {
    pressModifier();
    dragTo(inPrimary);
    ASSERT_NE(platform.overlay.view, nullptr);
    QWidget& view = platform.overlay.view->widget();
    EXPECT_NE(dynamic_cast<SnapOverlayView*>(&view), nullptr);
    view.resize(1440, 900);
    EXPECT_EQ(platform.overlay.view->blurArea().boundingRect(), QRect(4, 4, 1432, 892));
}

TEST_F(SnapControllerTest, KeepsTheOverlayWindowForTheNextDrag) {
    for (int drag = 0; drag < 5; ++drag) {
        pressModifier();
        dragTo(inPrimary);
        dragTo(inLeftHalfOfSecond);
        release();
        releaseModifier();
    }
    EXPECT_EQ(platform.overlay.madeCount, 1);
    EXPECT_EQ(surfaceCalls("orderFront"), 5U);
}

TEST_F(SnapControllerTest, CostsADraggedEventNothingWithoutTheModifier) {
    accessibility.calls.clear();
    for (int event = 0; event < 1000; ++event)
        dragTo({static_cast<double>(event), 300});
    EXPECT_TRUE(accessibility.calls.empty());
    EXPECT_TRUE(platform.overlay.calls.empty());
    EXPECT_EQ(platform.fakeMainLoop.postedCount(), 0U);
    EXPECT_EQ(platform.fakeMainLoop.activeTimerCount(), 0U);
}
