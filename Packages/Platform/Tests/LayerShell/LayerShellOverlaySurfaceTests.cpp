#include "StripesView.h"
#include "WaylandFixture.h"

#include <FakePlatform.h>
#include <LayerShell/LayerShellOverlaySurface.h>

#include <layer-shell-server.h>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;

const FakeOutput second{
    .name = QStringLiteral("DP-2"), .frame{1920, 0, 1280, 1024}, .mode{1280, 1024}};

class LayerShellOverlaySurfaceTest : public WaylandFixture {
protected:
    /// Starts a compositor with a display of this kind, and shows the overlay on it.
    void show(const FakeOutput& output = {}, FakeCompositor::Offers offers = {}) {
        start(offers);
        showOn(output);
    }
    /// Shows it on a new display of the compositor that was started.
    void showOn(const FakeOutput& output) {
        compositor->addOutput(output);
        surface.setScreen(screen);
        surface.orderFront();
        ASSERT_TRUE(waitUntil([&] { return shown() != nullptr; }));
    }
    /// What the overlay is to the compositor, once it has its first picture.
    [[nodiscard]] FakeSurface* shown() {
        time.runPosted();
        FakeSurface* layer = compositor ? compositor->layer() : nullptr;
        return layer && layer->isSeen() ? layer : nullptr;
    }
    [[nodiscard]] bool comesTo(int pictures) {
        return waitUntil([&] { return shown() && shown()->pictures == pictures; });
    }
    /// Whether it is there, all of it transparent.
    [[nodiscard]] bool isVeiled() {
        return waitUntil([&] {
            time.runPosted();
            const FakeSurface* layer = compositor->layer();
            return layer && layer->isShown() && !layer->isSeen();
        });
    }
    [[nodiscard]] bool isGone() {
        return waitUntil([&] {
            time.runPosted();
            return compositor->layers().empty();
        });
    }
    /// Makes sure that the compositor has heard all that has been said so far.
    void hearAll() {
        const WaylandConnection later(loop, socketPath());
        ASSERT_TRUE(waitUntil([&] { return later.isReady(); }));
    }

    FakeMainLoop time;
    WaylandOutputs outputs{connection};
    std::shared_ptr<StripesView> view = std::make_shared<StripesView>();
    ScreenPtr screen = makeScreen({.localizedName = QStringLiteral("DP-1")});
    ScreenPtr otherScreen = makeScreen({.localizedName = QStringLiteral("DP-2")});
    LayerShellOverlaySurface surface{
        connection, outputs,
        [this](const Screen& one) { return outputs.named(one.localizedName()); }, time, view};
};

TEST_F(LayerShellOverlaySurfaceTest, LiesAboveEverythingOnItsDisplayAndLetsAllInputThrough) {
    show();
    EXPECT_EQ(shown()->layer, static_cast<std::uint32_t>(ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY));
    EXPECT_EQ(shown()->outputName, QStringLiteral("DP-1"));
    EXPECT_EQ(shown()->anchor, 15U);
    EXPECT_EQ(shown()->exclusiveZone, -1);
    EXPECT_EQ(shown()->keyboard, 0U);
    EXPECT_TRUE(shown()->letsInputThrough);
    EXPECT_EQ(shown()->purpose, "tilewright-overlay");
}

TEST_F(LayerShellOverlaySurfaceTest, IsSeenOnlyWhileItIsShown) {
    start();
    compositor->addOutput({});
    surface.setScreen(screen);
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 1; }));
    EXPECT_TRUE(compositor->layers().empty());
    surface.orderFront();
    ASSERT_TRUE(comesTo(1));
    EXPECT_TRUE(view->isShown());
    surface.orderOut();
    EXPECT_TRUE(isVeiled());
    EXPECT_EQ(compositor->layer()->destination, QSize(1920, 1080)) << "nothing of it is left out";
    EXPECT_FALSE(view->isShown());
    EXPECT_EQ(view->endings, 1);
    view->highlight(1);
    time.runPosted();
    hearAll();
    EXPECT_EQ(shown(), nullptr);
    surface.orderFront();
    EXPECT_TRUE(comesTo(3)) << "the same surface: one that came anew would be faded in";
}

TEST_F(LayerShellOverlaySurfaceTest, IsThereUnseenFromTheBeginningOfADragOn) {
    connect();
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 1; }));
    surface.prepare(screen);
    ASSERT_TRUE(isVeiled());
    EXPECT_TRUE(compositor->layer()->letsInputThrough);
    surface.setScreen(screen);
    surface.orderFront();
    EXPECT_TRUE(comesTo(2));
}

TEST_F(LayerShellOverlaySurfaceTest, IsMadeAnewWhereADragBeginsOnAnotherDisplay) {
    connect();
    compositor->addOutput(second);
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 2; }));
    surface.prepare(screen);
    ASSERT_TRUE(isVeiled());
    surface.prepare(otherScreen);
    EXPECT_TRUE(waitUntil([&] {
        return compositor->layers().size() == 1 && compositor->layer()->outputName == second.name;
    }));
    EXPECT_TRUE(isVeiled());
}

TEST_F(LayerShellOverlaySurfaceTest, IsThereOnlyWhileItIsShownWhereOnePixelCannotBeStretched) {
    show({}, {.viewporter = 0});
    surface.orderOut();
    EXPECT_TRUE(isGone());
    surface.prepare(screen);
    hearAll();
    EXPECT_TRUE(compositor->layers().empty());
}

TEST_F(LayerShellOverlaySurfaceTest, GoesUnseenWithItsDisplayAndStaysAway) {
    show();
    surface.orderOut();
    ASSERT_TRUE(isVeiled());
    compositor->removeOutput(QStringLiteral("DP-1"));
    ASSERT_TRUE(isGone());
    compositor->addOutput({});
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 1; }));
    hearAll();
    EXPECT_TRUE(compositor->layers().empty());
}

TEST_F(LayerShellOverlaySurfaceTest, HasNoPictureBeforeItsSizeIsKnown) {
    start();
    compositor->configures = false;
    compositor->addOutput({});
    surface.setScreen(screen);
    surface.orderFront();
    ASSERT_TRUE(waitUntil([&] { return compositor->layer() != nullptr; }));
    view->highlight(1);
    time.runPosted();
    hearAll();
    EXPECT_FALSE(compositor->layer()->isShown());
    compositor->layer()->configure({1920, 1040});
    ASSERT_TRUE(comesTo(1));
    EXPECT_EQ(shown()->picture, view->expected({1920, 1040}, {1920, 1040}, 1));
}

struct Scale {
    double scale;
    QSize size;
    QSize pixels;
};

class LayerShellOverlayScaleTest : public LayerShellOverlaySurfaceTest,
                                   public ::testing::WithParamInterface<Scale> {};

TEST_P(LayerShellOverlayScaleTest, HasOnePixelForEachOfTheDisplayFromTheFirstPictureOn) {
    const auto [scale, size, pixels] = GetParam();
    show({.frame{{0, 0}, size}, .mode = pixels, .wholeScale = 2});
    EXPECT_EQ(shown()->picture.size(), pixels);
    EXPECT_EQ(shown()->destination, size);
    EXPECT_EQ(shown()->picture, view->expected(size, pixels, scale));
    // Told late, as some compositors do, it is no news.
    shown()->prefer(scale);
    view->highlight(2);
    ASSERT_TRUE(comesTo(2));
    EXPECT_EQ(shown()->picture, view->expected(size, pixels, scale));
}

INSTANTIATE_TEST_SUITE_P(, LayerShellOverlayScaleTest,
                         ::testing::Values(Scale{1, {1920, 1080}, {1920, 1080}},
                                           Scale{1.25, {1536, 864}, {1920, 1080}},
                                           Scale{1.5, {1280, 720}, {1920, 1080}},
                                           Scale{2, {1920, 1080}, {3840, 2160}}));

TEST_F(LayerShellOverlaySurfaceTest, HasAsManyPixelsAsTheCompositorPrefersWhereTheseAreMore) {
    show();
    shown()->prefer(1.5);
    ASSERT_TRUE(comesTo(2));
    EXPECT_EQ(shown()->picture.size(), QSize(2880, 1620));
    EXPECT_EQ(shown()->destination, QSize(1920, 1080));
}

TEST_F(LayerShellOverlaySurfaceTest, HasWholeMultiplesOfPixelsWhereThePictureCannotBeScaled) {
    show({.frame{0, 0, 1280, 720}, .wholeScale = 2}, {.viewporter = 0});
    EXPECT_EQ(shown()->picture.size(), QSize(2560, 1440));
    EXPECT_EQ(shown()->bufferScale, 2);
}

TEST_F(LayerShellOverlaySurfaceTest, PaintsOnlyWhatLooksDifferent) {
    show();
    view->highlight(1);
    ASSERT_TRUE(comesTo(2));
    EXPECT_EQ(shown()->changed, QRegion(480, 0, 480, 1080));
    view->highlight(3);
    ASSERT_TRUE(comesTo(3));
    EXPECT_EQ(shown()->changed, QRegion(480, 0, 480, 1080) + QRegion(1440, 0, 480, 1080));
    EXPECT_EQ(shown()->picture, view->expected({1920, 1080}, {1920, 1080}, 1));
}

TEST_F(LayerShellOverlaySurfaceTest, PaintsTheChangesOfOneTurnTogether) {
    show();
    for (const int stripe : {0, 1, 2, 3})
        view->highlight(stripe);
    ASSERT_TRUE(comesTo(2));
    hearAll();
    EXPECT_EQ(shown()->pictures, 2);
    EXPECT_EQ(shown()->picture, view->expected({1920, 1080}, {1920, 1080}, 1));
}

TEST_F(LayerShellOverlaySurfaceTest, NeedsOnePictureWhereTheCompositorCopiesIt) {
    show();
    for (const int stripe : {0, 1, 2, 3}) {
        view->highlight(stripe);
        ASSERT_TRUE(comesTo(stripe + 2));
    }
    EXPECT_EQ(compositor->picturesAlive(), 1);
}

TEST_F(LayerShellOverlaySurfaceTest, KeepsEveryPictureRightWhileTheCompositorHoldsOthers) {
    start();
    compositor->releases = false;
    showOn({});
    int pictures = 1;
    for (const int stripe : {0, 1, 2, 3, 1, 0, 2}) {
        view->highlight(stripe);
        ASSERT_TRUE(comesTo(++pictures));
        EXPECT_EQ(shown()->picture, view->expected({1920, 1080}, {1920, 1080}, 1));
        shown()->releaseOne();
    }
    EXPECT_EQ(compositor->picturesAlive(), 2);
}

TEST_F(LayerShellOverlaySurfaceTest, ShowsTheNewestStateOnceAPictureIsFreeWhenAllWereHeld) {
    start();
    compositor->releases = false;
    showOn({});
    view->highlight(0);
    ASSERT_TRUE(comesTo(2));
    view->highlight(1);
    ASSERT_TRUE(comesTo(3));
    for (const int stripe : {2, 3}) {
        view->highlight(stripe);
        time.runPosted();
    }
    hearAll();
    EXPECT_EQ(shown()->pictures, 3);
    EXPECT_EQ(compositor->picturesAlive(), 3);
    shown()->releaseOne();
    ASSERT_TRUE(comesTo(4));
    EXPECT_EQ(shown()->picture, view->expected({1920, 1080}, {1920, 1080}, 1));
    EXPECT_EQ(shown()->changed, QRegion(480, 0, 1440, 1080));
}

TEST_F(LayerShellOverlaySurfaceTest, KeepsItselfAndItsPixelsForAMinuteAfterItIsHidden) {
    constexpr int viewsAndVeil = 2;
    show();
    surface.orderOut();
    ASSERT_TRUE(isVeiled());
    time.advance(LayerShellOverlaySurface::pixelsKept - 1ms);
    hearAll();
    EXPECT_EQ(compositor->picturesAlive(), viewsAndVeil);
    surface.orderFront();
    ASSERT_TRUE(comesTo(3));
    time.advance(10min);
    hearAll();
    EXPECT_EQ(compositor->picturesAlive(), viewsAndVeil);
    surface.orderOut();
    ASSERT_TRUE(isVeiled());
    time.advance(LayerShellOverlaySurface::pixelsKept);
    EXPECT_TRUE(isGone());
    EXPECT_TRUE(waitUntil([&] { return compositor->picturesAlive() == 0; }));
    EXPECT_EQ(time.activeTimerCount(), 0U);
}

TEST_F(LayerShellOverlaySurfaceTest, ShowsWhatItLooksLikeNowAfterChangesWhileHidden) {
    show();
    surface.orderOut();
    ASSERT_TRUE(isVeiled());
    view->highlight(2);
    surface.orderFront();
    ASSERT_TRUE(comesTo(3));
    EXPECT_EQ(shown()->picture, view->expected({1920, 1080}, {1920, 1080}, 1));
}

TEST_F(LayerShellOverlaySurfaceTest, MovesToAnotherDisplay) {
    show();
    compositor->addOutput(second);
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 2; }));
    surface.setScreen(otherScreen);
    ASSERT_TRUE(waitUntil([&] { return shown() && shown()->outputName == second.name; }));
    EXPECT_EQ(shown()->picture, view->expected({1280, 1024}, {1280, 1024}, 1));
}

TEST_F(LayerShellOverlaySurfaceTest, PaintsAtOnceAndOnceWhenItIsGivenTheSameDisplayAgain) {
    show();
    view->highlight(3);
    surface.setScreen(screen);
    EXPECT_TRUE(waitUntil([&] { return compositor->layer()->pictures >= 2; }));
    hearAll();
    EXPECT_EQ(compositor->layer()->pictures, 2);
    EXPECT_EQ(shown()->picture, view->expected({1920, 1080}, {1920, 1080}, 1));
}

TEST_F(LayerShellOverlaySurfaceTest, FollowsAChangeOfItsDisplaysScale) {
    show();
    compositor->changeOutput({.frame{0, 0, 1280, 720}, .wholeScale = 2});
    compositor->layer()->configure({1280, 720});
    EXPECT_TRUE(waitUntil([&] {
        return shown() && shown()->destination == QSize(1280, 720) &&
               shown()->picture.size() == QSize(1920, 1080);
    }));
    EXPECT_EQ(shown()->picture, view->expected({1280, 720}, {1920, 1080}, 1.5));
}

TEST_F(LayerShellOverlaySurfaceTest, ComesBackWithItsDisplay) {
    show();
    compositor->removeOutput(QStringLiteral("DP-1"));
    ASSERT_TRUE(isGone());
    compositor->addOutput({});
    EXPECT_TRUE(comesTo(1));
}

TEST_F(LayerShellOverlaySurfaceTest, IsMadeAnewWhenTheCompositorClosesItOnADisplayThatStays) {
    show();
    shown()->close();
    EXPECT_TRUE(waitUntil([&] { return shown() && shown()->pictures == 1; }));
}

TEST_F(LayerShellOverlaySurfaceTest, IsShownByTheNextCompositorWhenTheFirstHasEnded) {
    show();
    view->highlight(1);
    compositor.reset();
    ASSERT_TRUE(waitUntil([&] { return !connection.isReady(); }));
    start();
    compositor->addOutput({});
    ASSERT_TRUE(comesTo(1));
    EXPECT_EQ(shown()->picture, view->expected({1920, 1080}, {1920, 1080}, 1));
}

TEST_F(LayerShellOverlaySurfaceTest, StaysHiddenWhenTheCompositorEndsAfterItWasHidden) {
    show();
    surface.orderOut();
    compositor.reset();
    ASSERT_TRUE(waitUntil([&] { return !connection.isReady(); }));
    start();
    compositor->addOutput({});
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 1; }));
    hearAll();
    EXPECT_TRUE(compositor->layers().empty());
}

TEST_F(LayerShellOverlaySurfaceTest, IsSimplyNotSeenWhereThereAreNoLayers) {
    connect({.layerShell = 0});
    surface.setScreen(screen);
    surface.orderFront();
    hearAll();
    EXPECT_TRUE(compositor->layers().empty());
    surface.prepare(screen);
    surface.orderOut();
    EXPECT_TRUE(connection.isReady());
}

TEST_F(LayerShellOverlaySurfaceTest, ShowsThePixelsThatItHasPreparedForTheDisplay) {
    connect();
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 1; }));
    surface.prepare(screen);
    ASSERT_TRUE(isVeiled());
    view->highlight(2);
    surface.setScreen(screen);
    surface.orderFront();
    ASSERT_TRUE(comesTo(2));
    EXPECT_EQ(shown()->picture, view->expected({1920, 1080}, {1920, 1080}, 1));
    EXPECT_EQ(compositor->picturesAlive(), 2) << "it and the veil";
}

TEST_F(LayerShellOverlaySurfaceTest, PreparesOnceForEachDragUntilItEnds) {
    FakeEventMonitors monitors;
    FakeScreens screens;
    screens.setScreens({screen});
    const FakePointer pointer;
    const auto comes = [&](EventType type) {
        monitors.send(FakeEventMonitors::Kind::global, {type, {}});
    };
    connect();
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 1; }));
    {
        LayerShellOverlaySurface prepared(
            connection, outputs,
            [this](const Screen& one) { return outputs.named(one.localizedName()); }, time, view);
        prepared.prepareAtDrags(monitors, screens, pointer);
        EXPECT_EQ(time.activeTimerCount(), 0U);
        comes(EventType::leftMouseDragged);
        // That it is given back is what tells of it.
        EXPECT_EQ(time.activeTimerCount(), 1U);
        time.advance(LayerShellOverlaySurface::pixelsKept);
        comes(EventType::leftMouseDragged);
        EXPECT_EQ(time.activeTimerCount(), 0U);
        comes(EventType::leftMouseUp);
        EXPECT_EQ(time.activeTimerCount(), 0U);
        comes(EventType::leftMouseDragged);
        EXPECT_EQ(time.activeTimerCount(), 1U);
    }
    EXPECT_TRUE(monitors.monitors.empty());
}

TEST_F(LayerShellOverlaySurfaceTest, ForgetsPreparedPixelsOfADisplayThatGoesBeforeItIsShown) {
    connect();
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 1; }));
    surface.prepare(screen);
    ASSERT_TRUE(isVeiled());
    compositor->removeOutput(QStringLiteral("DP-1"));
    ASSERT_TRUE(isGone());
    surface.orderFront();
    surface.orderOut();
    EXPECT_EQ(time.activeTimerCount(), 1U);
    time.advance(LayerShellOverlaySurface::pixelsKept);
    EXPECT_EQ(time.activeTimerCount(), 0U);
}

TEST_F(LayerShellOverlaySurfaceTest, ForgetsPreparedPixelsAfterAMinute) {
    connect();
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 1; }));
    surface.prepare(screen);
    EXPECT_EQ(time.activeTimerCount(), 1U);
    time.advance(LayerShellOverlaySurface::pixelsKept);
    EXPECT_EQ(time.activeTimerCount(), 0U);
    EXPECT_TRUE(isGone());
    surface.setScreen(screen);
    surface.orderFront();
    EXPECT_TRUE(comesTo(1));
}

} // namespace
} // namespace tilewright::testing
