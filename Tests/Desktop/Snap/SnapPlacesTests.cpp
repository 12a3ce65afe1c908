#include "Displays.h"
#include "DragScript.h"

#include <Waiting.h>

#include <array>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

bool isAmber(const QColor& colour) {
    return std::abs(colour.red() - 209) < 12 && std::abs(colour.green() - 140) < 12 &&
           std::abs(colour.blue() - 51) < 12;
}

/// Drags under openbox without a compositor, where the borders on the screen are the overlay's very
/// colours.
struct SnapPlaces : ::testing::Test {
    void SetUp() override { ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox)); }
    TestClient openWindow() { return startClient(desktop, ClientKind::qt, {300, 200, 400, 300}); }
    /// Whether the zone with this frame is drawn highlighted.
    bool isHighlighted(const QRect& zone) const {
        return isAmber(inspector.pixel({zone.left() + 5, zone.center().y()}));
    }

    DesktopSession desktop;
    XInspector& inspector = desktop.inspector();
};

TEST_F(SnapPlaces, ADropInAGapBetweenZonesSnapsNothing) {
    const ZoneLayout layout =
        customLayout(QStringLiteral("Gap"), {{0, 0, 0.4, 1}, {0.6, 0, 0.4, 1}});
    assignLayouts(desktop, {layout});
    RunningProgram program(desktop);
    DragScript script(desktop, program);
    const TestClient client = openWindow();
    const QRect before = inspector.outerFrame(client.window);
    script.grab(client, KeyTiming::beforeThePress);
    script.dragTo(workArea(inspector).center());
    script.drop();
    EXPECT_EQ(inspector.outerFrame(client.window), before);
    const QRect right = zoneFrame(layout.zones[1], workArea(inspector));
    script.run(client, KeyTiming::beforeThePress, right.center());
    expectFills(inspector, ClientKind::qt, client, right);
}

TEST_F(SnapPlaces, ADropOverAPanelSnapsNothingAndZonesLeaveThePanelFree) {
    const QRect whole = workArea(inspector);
    desktop.start(QStringLiteral("tint2"));
    ASSERT_TRUE(waitUntil([&] { return workArea(inspector).height() < whole.height(); }));
    const QRect area = workArea(inspector);
    RunningProgram program(desktop);
    DragScript script(desktop, program);
    const TestClient client = openWindow();
    const QRect before = inspector.outerFrame(client.window);
    const QPoint onPanel(whole.center().x(),
                         area.top() > whole.top() ? whole.top() + 3 : whole.bottom() - 3);
    script.grab(client, KeyTiming::beforeThePress);
    script.dragTo(onPanel);
    script.drop();
    EXPECT_EQ(inspector.outerFrame(client.window), before);
    const QRect zone = zoneFrame(ZoneLayout::bentoBox().zones[0], area);
    script.run(client, KeyTiming::beforeThePress, zone.center());
    expectFills(inspector, ClientKind::qt, client, zone);
}

TEST_F(SnapPlaces, TheOverlayFollowsThePointerToAMonitorWithAnotherLayout) {
    const QRect left(0, 0, 1000, 1080);
    const QRect right(1000, 0, 920, 1080);
    splitIntoMonitors(desktop, left, right);
    assignLayouts(desktop, {ZoneLayout::thirds(), ZoneLayout::quadrants()});
    RunningProgram program(desktop);
    DragScript script(desktop, program);
    const TestClient client = openWindow();
    script.grab(client, KeyTiming::beforeThePress);
    EXPECT_TRUE(waitUntil([&] { return inspector.clientFrame(program.overlay()) == left; }));
    const QRect third = zoneFrame(ZoneLayout::thirds().zones[1], left);
    script.dragTo(third.center());
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(third); }));
    const QRect quadrant = zoneFrame(ZoneLayout::quadrants().zones[2], right);
    script.dragTo(quadrant.center());
    EXPECT_TRUE(waitUntil([&] { return inspector.clientFrame(program.overlay()) == right; }));
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(quadrant); }));
    script.drop();
    expectFills(inspector, ClientKind::qt, client, quadrant);
    script.run(client, KeyTiming::beforeThePress, third.center());
    expectFills(inspector, ClientKind::qt, client, third);
}

TEST(SnapOnTwoOutputs, EachHasItsOwnLayoutAndADragGoesFromOneToTheOther) {
    DesktopSession desktop(XServer::twoOutputs());
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    const XInspector& inspector = desktop.inspector();
    const QSize screen = inspector.screenSize();
    const QRect left(0, 0, screen.width() / 2, screen.height());
    const QRect right = left.translated(left.width(), 0);
    assignLayouts(desktop, {ZoneLayout::thirds(), ZoneLayout::quadrants()});
    RunningProgram program(desktop);
    DragScript script(desktop, program);
    const TestClient client = startClient(desktop, ClientKind::qt, {300, 200, 400, 300});
    script.grab(client, KeyTiming::afterTheDragBegan);
    EXPECT_TRUE(waitUntil([&] { return inspector.clientFrame(program.overlay()) == left; }));
    const QRect quadrant = zoneFrame(ZoneLayout::quadrants().zones[2], right);
    script.dragTo(quadrant.center());
    EXPECT_TRUE(waitUntil([&] { return inspector.clientFrame(program.overlay()) == right; }));
    script.drop();
    expectFills(inspector, ClientKind::qt, client, quadrant);
    const QRect third = zoneFrame(ZoneLayout::thirds().zones[1], left);
    script.run(client, KeyTiming::afterTheDragBegan, third.center());
    expectFills(inspector, ClientKind::qt, client, third);
}

TEST_F(SnapPlaces, BetweenTwoMonitorsTheOverlayStaysAsItWas) {
    const QRect left(0, 0, 900, 1080);
    const QRect right(1020, 0, 900, 1080);
    splitIntoMonitors(desktop, left, right);
    assignLayouts(desktop, {ZoneLayout::halves(), ZoneLayout::halves()});
    RunningProgram program(desktop);
    DragScript script(desktop, program);
    const TestClient client = openWindow();
    const QRect half = zoneFrame(ZoneLayout::halves().zones[1], left);
    script.grab(client, KeyTiming::beforeThePress);
    script.dragTo(half.center());
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(half); }));
    // Along the bottom, where no pixel that is looked at lies under the pointer.
    desktop.input().move({left.right() + 60, 1000});
    EXPECT_TRUE(program.overlayShows());
    script.drop();
    expectFills(inspector, ClientKind::qt, client, half);
}

} // namespace
} // namespace tilewright::testing
