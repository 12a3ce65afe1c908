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
    /// Waits until the window that was dragged fills the frame and is the active one.
    void expectSnapped(const TestClient& client, const QRect& frame) {
        expectFills(inspector, ClientKind::qt, client, frame);
        EXPECT_TRUE(waitUntil([&] { return inspector.activeWindow() == client.window; }))
            << desktop.describe();
    }
    /// The window that was dragged is where it was, and the active one. Another window is snapped
    /// first: what was to happen to this one has happened by then.
    void expectNotSnapped(const TestClient& client, const QRect& before, DragScript& script,
                          const QRect& zone) {
        EXPECT_EQ(inspector.activeWindow(), client.window) << desktop.describe();
        const TestClient next = startClient(desktop, ClientKind::qt, {420, 560, 400, 300});
        script.run(next, KeyTiming::beforeThePress, zone.center());
        expectSnapped(next, zone);
        EXPECT_EQ(inspector.outerFrame(client.window), before) << desktop.describe();
    }
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
    expectNotSnapped(client, before, script, zoneFrame(layout.zones[1], workArea(inspector)));
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
    expectNotSnapped(client, before, script, zoneFrame(ZoneLayout::bentoBox().zones[0], area));
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
    expectSnapped(client, quadrant);
    script.run(client, KeyTiming::beforeThePress, third.center());
    expectSnapped(client, third);
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
    expectSnapped(client, half);
}

} // namespace
} // namespace tilewright::testing
