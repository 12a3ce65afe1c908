#include "Displays.h"
#include "DragScript.h"
#include "ProcessFigures.h"

#include <BareClient.h>
#include <SettingsManager.h>
#include <TilewrightUI/Contrast.h>
#include <Waiting.h>

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

constexpr QPoint inFirstZone(600, 400);

bool isAmber(const QColor& colour) {
    return std::abs(colour.red() - 209) < 12 && std::abs(colour.green() - 140) < 12 &&
           std::abs(colour.blue() - 51) < 12;
}

struct OverlayWindow : ::testing::Test {
    void begin(Compositing compositing, const std::map<QString, QString>& environment = {}) {
        ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox, compositing));
        program = std::make_unique<RunningProgram>(desktop, RunningProgram::defaultModifier(),
                                                   environment);
        script = std::make_unique<DragScript>(desktop, *program);
    }
    /// Drags a small window into the first zone of Bento Box and holds it there.
    void hold() {
        client = startClient(desktop, ClientKind::qt, {700, 300, 300, 200});
        script->grab(client, KeyTiming::beforeThePress);
        script->dragTo(inFirstZone);
    }
    QColor pixel(QPoint point) const { return inspector.pixel(point); }
    /// Gives the bare desktop this colour, and waits until it shows between the tiles.
    void paintDesktop(const QColor& color) {
        static_cast<void>(outputOf(QStringLiteral("xsetroot"),
                                   {QStringLiteral("-solid"), color.name()},
                                   desktop.environment()));
        ASSERT_TRUE(waitUntil([&] { return pixel({1, 1}) == color; }));
    }
    /// The greatest contrast of two pixels that touch, from a point on in steps.
    double greatestContrast(QPoint point, QPoint step) const {
        double greatest = 1;
        for (int count = 0; count < 20; ++count, point += step)
            greatest = std::max(greatest, look::contrast(pixel(point), pixel(point + step)));
        return greatest;
    }
    /// On the first zone's left border, and on the second's top border.
    static constexpr QPoint onHighlightedBorder{5, 700};
    static constexpr QPoint onPlainBorder{1500, 4};
    /// Within the two, above nothing but the desktop.
    static constexpr QPoint inHighlightedTile{80, 900};
    static constexpr QPoint inPlainTile{1500, 300};

    DesktopSession desktop;
    XInspector& inspector = desktop.inspector();
    std::unique_ptr<RunningProgram> program;
    std::unique_ptr<DragScript> script;
    TestClient client;
};

TEST_F(OverlayWindow, CoversAFullscreenWindowTakesNoFocusAndShowsInNoListOfWindows) {
    begin(Compositing::off);
    const TestClient full = startClient(desktop, ClientKind::qt, {100, 100, 500, 400});
    static_cast<void>(
        outputOf(QStringLiteral("wmctrl"),
                 {QStringLiteral("-i"), QStringLiteral("-r"), QString::number(full.window),
                  QStringLiteral("-b"), QStringLiteral("add,fullscreen")},
                 desktop.environment()));
    const QRect screen(QPoint(), inspector.screenSize());
    ASSERT_TRUE(waitUntil([&] { return inspector.outerFrame(full.window) == screen; }));
    const auto focus = inspector.inputFocus();

    desktop.input().move(inFirstZone);
    desktop.input().pressKey(program->key());
    desktop.input().press();
    EXPECT_TRUE(waitUntil([&] {
        desktop.input().move(inFirstZone + QPoint(2, 0));
        desktop.input().move(inFirstZone);
        return program->overlayShows();
    }));
    EXPECT_TRUE(waitUntil([&] { return isAmber(pixel(onHighlightedBorder)); }));
    EXPECT_EQ(inspector.inputFocus(), focus);
    const auto listed = inspector.property(inspector.root(), "_NET_CLIENT_LIST");
    EXPECT_EQ(std::count(listed.begin(), listed.end(), program->overlay()), 0);
    EXPECT_TRUE(inspector.isOverrideRedirect(program->overlay()));
    desktop.input().releaseKey(program->key());
    desktop.input().release();
}

TEST_F(OverlayWindow, CoversTheWholeMonitorPanelsIncluded) {
    begin(Compositing::off);
    const QRect screen(QPoint(), inspector.screenSize());
    // Along the left edge, where the first zone's border is drawn.
    constexpr quint32 thickness = 60;
    const BareClient panel(desktop.display(), QRect(0, 0, int(thickness), screen.height()),
                           {thickness, 0, 0, 0, 0, quint32(screen.bottom()), 0, 0, 0, 0, 0, 0});
    ASSERT_TRUE(waitUntil([&] { return workArea(inspector).left() == int(thickness); }));
    const QColor ground = pixel(onHighlightedBorder);
    EXPECT_EQ(ground, QColor(Qt::white)) << "the panel";
    hold();
    EXPECT_EQ(inspector.clientFrame(program->overlay()), screen);
    EXPECT_TRUE(waitUntil([&] { return isAmber(pixel(onHighlightedBorder)); }))
        << desktop.describe();
    EXPECT_EQ(inspector.clientFrame(panel.window()), QRect(0, 0, int(thickness), screen.height()));
    script->drop();
    EXPECT_TRUE(waitUntil([&] { return pixel(onHighlightedBorder) == ground; }))
        << desktop.describe();
}

TEST_F(OverlayWindow, HasItsPixelsReadyBeforeTheFirstMoveOfADragWithTheKey) {
    const QRect left(0, 0, 700, 1080);
    const QRect right(700, 0, 1220, 1080);
    splitIntoMonitors(desktop, left, right);
    // Has shown the overlay on the left monitor once.
    begin(Compositing::off);
    const auto pixelsKiB = [&] { return processFigures(program->pid()).sharedMemoryKiB; };
    const long ofTheRight = long{right.width()} * right.height() * 4 / 1024;
    desktop.input().click(right.center());
    EXPECT_LT(pixelsKiB(), ofTheRight);
    program->pressKey();
    desktop.input().press();
    EXPECT_TRUE(waitUntil([&] { return pixelsKiB() >= ofTheRight; }));
    EXPECT_FALSE(program->overlayShows());
    desktop.input().release();
    program->releaseKey();
}

TEST_F(OverlayWindow, ShowsTheHighlightOnceACompositorHasDrawnItWithoutMotionToo) {
    SettingsManager settings(desktop.display());
    settings.setAnimations(0);
    begin(Compositing::on);
    desktop.input().move(inFirstZone);
    program->pressKey();
    desktop.input().press();
    EXPECT_TRUE(waitUntil([&] {
        desktop.input().move(inFirstZone + QPoint(2, 0));
        desktop.input().move(inFirstZone);
        return program->overlayShows();
    }));
    EXPECT_TRUE(waitUntil([&] { return isAmber(pixel(onHighlightedBorder)); }))
        << desktop.describe();
    desktop.input().release();
    program->releaseKey();
}

TEST_F(OverlayWindow, ThePointerIsInTheWindowsBeneathIt) {
    begin(Compositing::on);
    const TestClient beneath = startClient(desktop, ClientKind::qt, {1300, 600, 300, 200});
    ASSERT_TRUE(waitUntil([&] { return inspector.outerFrame(beneath.window).width() > 100; }));
    hold();
    desktop.input().move(inspector.outerFrame(beneath.window).center());
    const QString under = outputOf(QStringLiteral("xdotool"),
                                   {QStringLiteral("getmouselocation"), QStringLiteral("--shell")},
                                   desktop.environment());
    EXPECT_TRUE(under.contains(QStringLiteral("WINDOW="))) << under.toStdString();
    EXPECT_FALSE(under.contains(QStringLiteral("WINDOW=%1\n").arg(program->overlay())))
        << under.toStdString();
    EXPECT_TRUE(program->overlayShows());
    script->drop();
}

TEST_F(OverlayWindow, WithoutACompositorTheDesktopStaysVisibleBetweenOpaqueBorders) {
    begin(Compositing::off);
    const QColor ground = pixel(inPlainTile);
    const QColor otherGround = pixel(inHighlightedTile);
    hold();
    EXPECT_TRUE(waitUntil([&] { return isAmber(pixel(onHighlightedBorder)); }));
    EXPECT_NE(pixel(onPlainBorder), ground);
    EXPECT_EQ(pixel(inPlainTile), ground);
    EXPECT_EQ(pixel(inHighlightedTile), otherGround);
    script->drop();
    EXPECT_TRUE(waitUntil([&] { return pixel(onPlainBorder) == ground; }));
}

TEST_F(OverlayWindow, WithoutACompositorEachTileStandsOutFromEveryGround) {
    begin(Compositing::off);
    hold();
    EXPECT_TRUE(waitUntil([&] { return isAmber(pixel(onHighlightedBorder)); }));
    for (int grey = 0; grey <= 255; grey += 17) {
        ASSERT_NO_FATAL_FAILURE(paintDesktop(QColor(grey, grey, grey)));
        EXPECT_GE(greatestContrast({0, onHighlightedBorder.y()}, {1, 0}), 3) << grey;
        EXPECT_GE(greatestContrast({onPlainBorder.x(), 0}, {0, 1}), 3) << grey;
    }
    script->drop();
}

TEST_F(OverlayWindow, WithACompositorTheGroundShinesThroughTheTiles) {
    begin(Compositing::on);
    const QColor ground = pixel(inHighlightedTile);
    hold();
    EXPECT_TRUE(waitUntil([&] { return isAmber(pixel(onHighlightedBorder)); }));
    // A tint of amber over the ground: redder than it was, far from opaque.
    EXPECT_TRUE(waitUntil([&] { return pixel(inHighlightedTile).red() > ground.red(); }));
    EXPECT_FALSE(isAmber(pixel(inHighlightedTile)));
    script->drop();
    EXPECT_TRUE(waitUntil([&] { return !isAmber(pixel(onHighlightedBorder)); }));
}

TEST_F(OverlayWindow, FollowsACompositorThatComesAndGoesInMidDrag) {
    begin(Compositing::off);
    const QColor ground = pixel(inPlainTile);
    hold();
    EXPECT_TRUE(waitUntil([&] { return isAmber(pixel(onHighlightedBorder)); }));
    ASSERT_TRUE(desktop.startCompositor());
    EXPECT_TRUE(waitUntil([&] { return pixel(inPlainTile) != ground; }))
        << "a translucent tile changes what is beneath";
    desktop.stopCompositor();
    EXPECT_TRUE(waitUntil([&] {
        return isAmber(pixel(onHighlightedBorder)) && pixel(inPlainTile) == ground;
    })) << "cut to the borders again";
    script->drop();
}

TEST_F(OverlayWindow, IsOfTheScreensOwnKindWhereNothingBlendsIt) {
    // The server would put a window of another kind together with the others by itself.
    begin(Compositing::off);
    hold();
    EXPECT_EQ(inspector.depth(program->overlay()), inspector.depth(inspector.root()));
    ASSERT_TRUE(desktop.startCompositor());
    EXPECT_TRUE(waitUntil([&] { return inspector.depth(program->overlay()) == 32; }));
    script->drop();
}

TEST_F(OverlayWindow, GoesThoughTheWindowManagerHangs) {
    begin(Compositing::off);
    const QColor ground = pixel(onHighlightedBorder);
    hold();
    EXPECT_TRUE(waitUntil([&] { return isAmber(pixel(onHighlightedBorder)); }));
    desktop.windowManager().signal(SIGSTOP);
    desktop.input().release();
    EXPECT_TRUE(waitUntil([&] { return !program->overlayShows(); }));
    EXPECT_EQ(pixel(onHighlightedBorder), ground);
    desktop.windowManager().signal(SIGCONT);
    program->releaseKey();
}

/// A server that shares no memory with its clients, as one on another machine.
struct OverlayWithoutSharedMemory : ::testing::Test {
    DesktopSession desktop{XServer::virtualScreen(
        {1920, 1080}, {QStringLiteral("-extension"), QStringLiteral("MIT-SHM")})};
};

TEST_F(OverlayWithoutSharedMemory, IsTheSameAndFollowsThePointer) {
    // From 13 on picom does not start on such a server.
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::xfwm4, Compositing::on));
    RunningProgram program(desktop);
    DragScript script(desktop, program);
    const TestClient client = startClient(desktop, ClientKind::qt, {700, 300, 300, 200});
    const QRect area = workArea(desktop.inspector());
    script.grab(client, KeyTiming::beforeThePress);
    for (const Zone& zone : ZoneLayout::bentoBox().zones) {
        const QRect frame = zoneFrame(zone, area);
        script.dragTo(frame.center());
        EXPECT_TRUE(waitUntil([&] {
            return isAmber(desktop.inspector().pixel({frame.left() + 5, frame.center().y()}));
        }));
    }
    script.drop();
    expectFills(desktop.inspector(), ClientKind::qt, client,
                zoneFrame(ZoneLayout::bentoBox().zones.back(), area));
}

struct ScaledOverlay : OverlayWindow, ::testing::WithParamInterface<const char*> {};

TEST_P(ScaledOverlay, CoversExactlyTheMonitorsPixelsAndSnapsToThem) {
    const QRect left(0, 0, 1003, 1080);
    const QRect right(1003, 0, 917, 1080);
    splitIntoMonitors(desktop, left, right);
    begin(Compositing::off,
          {{QStringLiteral("QT_SCALE_FACTOR"), QString::fromLatin1(GetParam())},
           {QStringLiteral("QT_SCALE_FACTOR_ROUNDING_POLICY"), QStringLiteral("PassThrough")}});
    client = startClient(desktop, ClientKind::qt, {300, 200, 400, 300});
    script->grab(client, KeyTiming::beforeThePress);
    EXPECT_TRUE(waitUntil([&] { return inspector.clientFrame(program->overlay()) == left; }));
    const QRect zone = zoneFrame(ZoneLayout::bentoBox().zones[0], right);
    script->dragTo(zone.center());
    EXPECT_TRUE(waitUntil([&] { return inspector.clientFrame(program->overlay()) == right; }));
    script->drop();
    expectFills(inspector, ClientKind::qt, client, zone);
}

INSTANTIATE_TEST_SUITE_P(At, ScaledOverlay, ::testing::Values("1", "1.25", "1.5", "2"),
                         [](const auto& parameter) {
                             std::string name = parameter.param;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

} // namespace
} // namespace tilewright::testing
