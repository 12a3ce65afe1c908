#include "OverlayFixture.h"

using namespace std::chrono_literals;
using namespace tilewright;
using namespace tilewright::testing;

namespace {

/// Two halves and nothing highlighted, shown, with everything painted that is to be painted.
class SnapOverlayViewTest : public OverlayFixture {
protected:
    SnapOverlayViewTest() {
        show({makeZone(0, 0, 0.5, 1), makeZone(0.5, 0, 0.5, 1)});
        view.show();
        settle();
    }

    /// Runs what is due without letting the view's time pass, and forgets what that painted.
    void settle() {
        paint();
        painted.forget();
    }
    void paint() {
        loop().runPosted();
        // What Qt has posted includes the repainting that the view asked for.
        for (int turn = 0; turn < 3; ++turn)
            QCoreApplication::processEvents();
    }
    [[nodiscard]] static QRect leftTile() { return {4, 4, 492, 792}; }
    [[nodiscard]] static QRect rightTile() { return {504, 4, 492, 792}; }

    PaintRecorder painted{view};
};

/// The shaped view of a layout, with a count of how often its areas changed.
class ShapedOverlay : public SnapOverlayViewTest {
protected:
    ShapedOverlay() {
        view.setRendering(OverlayRendering::shaped);
        view.onAreasChanged([this] { ++areaChanges; });
    }
    int areaChanges = 0;
};

/// Whether the region holds the whole rectangle.
bool covers(const QRegion& region, const QRect& rect) {
    return QRegion(rect).subtracted(region).isEmpty();
}

/// The widths of the parts of a region along a row.
std::vector<int> widthsAlong(const QRegion& region, const QRect& row) {
    std::vector<int> widths;
    for (const QRect& part : region.intersected(row))
        widths.push_back(part.width());
    return widths;
}

} // namespace

TEST_F(SnapOverlayViewTest, RepaintsOnlyTheTilesWhoseHighlightChanges) {
    highlight(zone(0).id);
    paint();
    EXPECT_TRUE(covers(painted.region, leftTile()));
    EXPECT_FALSE(painted.region.intersects(rightTile()));
    loop().advance(200ms);
    settle();
    highlight(zone(1).id);
    paint();
    EXPECT_TRUE(covers(painted.region, leftTile()));
    EXPECT_TRUE(covers(painted.region, rightTile()));
    // What lies between and around the tiles stays as it is.
    EXPECT_FALSE(painted.region.intersects(QRect(498, 0, 4, 800)));
    EXPECT_FALSE(covers(painted.region, view.rect()));
}

TEST_F(SnapOverlayViewTest, RepaintsTheChangedTileInEachFrameUntilTheFadeEnds) {
    highlight(zone(0).id);
    settle();
    for (int frame = 0; frame < HighlightFade::duration / HighlightFade::frame; ++frame) {
        EXPECT_EQ(loop().activeTimerCount(), 1U);
        painted.forget();
        loop().advance(HighlightFade::frame);
        paint();
        EXPECT_EQ(painted.count, 1);
        EXPECT_TRUE(covers(painted.region, leftTile()));
        EXPECT_FALSE(painted.region.intersects(rightTile()));
    }
    EXPECT_EQ(loop().activeTimerCount(), 0U);
}

TEST_F(SnapOverlayViewTest, DoesNothingWhileNothingFades) {
    highlight(zone(0).id);
    loop().advance(120ms);
    settle();
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    EXPECT_EQ(loop().postedCount(), 0U);
    loop().advance(60s);
    paint();
    EXPECT_EQ(painted.count, 0);
}

TEST_F(SnapOverlayViewTest, DoesNotRepaintWhenTheModelIsAssignedWhatItHas) {
    highlight(zone(0).id);
    loop().advance(200ms);
    settle();
    highlight(zone(0).id);
    model.setLayout(ZoneLayout(model.layout()));
    paint();
    EXPECT_EQ(painted.count, 0);
    EXPECT_EQ(loop().activeTimerCount(), 0U);
}

TEST_F(SnapOverlayViewTest, RepaintsOnceForSeveralChangesInOneTurn) {
    model.setHighlightedZoneID(zone(0).id);
    model.setHighlightedZoneID(std::nullopt);
    model.setHighlightedZoneID(zone(1).id);
    paint();
    EXPECT_EQ(painted.count, 1);
    EXPECT_FALSE(painted.region.intersects(leftTile()));
    EXPECT_TRUE(covers(painted.region, rightTile()));
}

TEST_F(SnapOverlayViewTest, FadesBothTilesWhenTheHighlightMovesOn) {
    highlight(zone(0).id);
    loop().advance(120ms);
    const QImage before = picture();
    highlight(zone(1).id);
    loop().advance(60ms);
    const QImage between = picture();
    EXPECT_LT(qAlpha(between.pixel(5, 400)), qAlpha(before.pixel(5, 400)));
    EXPECT_GT(qAlpha(between.pixel(505, 400)), qAlpha(before.pixel(505, 400)));
    loop().advance(59ms);
    EXPECT_EQ(loop().activeTimerCount(), 1U);
    loop().advance(1ms);
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    const QImage after = picture();
    EXPECT_EQ(qAlpha(after.pixel(505, 400)), 255);
    EXPECT_EQ(after.copy(leftTile()), before.copy(rightTile()));
    EXPECT_EQ(after.copy(rightTile()), before.copy(leftTile()));
}

TEST_F(SnapOverlayViewTest, TurnsAFadeBackWithoutAJump) {
    highlight(zone(0).id);
    loop().advance(56ms);
    const int reached = qAlpha(picture().pixel(5, 400));
    highlight(std::nullopt);
    const int turned = qAlpha(picture().pixel(5, 400));
    EXPECT_LE(turned, reached);
    EXPECT_GT(turned, reached - 30);
    loop().advance(120ms);
    EXPECT_EQ(loop().activeTimerCount(), 0U);
}

TEST_F(SnapOverlayViewTest, EndsFadesWhenHidden) {
    highlight(zone(0).id);
    EXPECT_EQ(loop().activeTimerCount(), 1U);
    view.hide();
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    EXPECT_EQ(qAlpha(picture().pixel(5, 400)), 255);
}

TEST_F(SnapOverlayViewTest, EndsFadesWhenTheSurfaceSaysSo) {
    highlight(zone(0).id);
    view.finishAnimations();
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    EXPECT_EQ(qAlpha(picture().pixel(5, 400)), 255);
    // Also those that the model has asked for but the view has not begun.
    model.setHighlightedZoneID(zone(1).id);
    view.finishAnimations();
    EXPECT_EQ(qAlpha(picture().pixel(505, 400)), 255);
    loop().runPosted();
    EXPECT_EQ(loop().activeTimerCount(), 0U);
}

TEST_F(SnapOverlayViewTest, ChangesAtOnceWhileHidden) {
    view.hide();
    highlight(zone(0).id);
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    EXPECT_EQ(qAlpha(picture().pixel(5, 400)), 255);
}

TEST_F(SnapOverlayViewTest, ShowsNoTraceOfWhatWasHighlightedBeforeItWasHidden) {
    highlight(zone(0).id);
    loop().advance(200ms);
    // As a drag that ends and one that begins within one turn of the loop.
    view.hide();
    model.setHighlightedZoneID(std::nullopt);
    view.show();
    model.setHighlightedZoneID(zone(1).id);
    loop().runPosted();
    const int plain = qAlpha(picture().pixel(250, 5));
    loop().advance(200ms);
    EXPECT_EQ(qAlpha(picture().pixel(250, 5)), plain);
}

TEST_F(SnapOverlayViewTest, EndsFadesOfTheLayoutThatIsReplaced) {
    highlight(zone(0).id);
    EXPECT_EQ(loop().activeTimerCount(), 1U);
    settle();
    show({makeZone(0, 0, 1, 0.5), makeZone(0, 0.5, 1, 0.5)});
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    paint();
    EXPECT_TRUE(covers(painted.region, view.rect()));
}

TEST_F(SnapOverlayViewTest, FadesInTheFirstHighlightOfANewLayout) {
    const Zone upper = makeZone(0, 0, 1, 0.5);
    model.setLayout(makeLayout({upper, makeZone(0, 0.5, 1, 0.5)}));
    model.setHighlightedZoneID(upper.id);
    loop().runPosted();
    EXPECT_EQ(loop().activeTimerCount(), 1U);
    EXPECT_LT(qAlpha(picture().pixel(500, 5)), 255);
    loop().advance(120ms);
    EXPECT_EQ(qAlpha(picture().pixel(500, 5)), 255);
}

TEST_F(SnapOverlayViewTest, EndsFadesWhenItsSizeChanges) {
    highlight(zone(0).id);
    view.resize(800, 600);
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    EXPECT_EQ(qAlpha(picture().pixel(5, 300)), 255);
}

TEST_F(SnapOverlayViewTest, ShowsANewLayoutAlsoWhenRepaintedBeforeTheLoopTurns) {
    model.setLayout(makeLayout({makeZone(0, 0, 1, 1)}));
    view.repaint();
    const QImage image = picture();
    EXPECT_GT(qAlpha(image.pixel(500, 400)), 0);
}

TEST_F(SnapOverlayViewTest, ChangesAtOnceWhereTheUserWantsReducedMotion) {
    look::setPrefersReducedMotion(true);
    highlight(zone(0).id);
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    paint();
    EXPECT_EQ(painted.count, 1);
    EXPECT_EQ(qAlpha(picture().pixel(5, 400)), 255);
}

TEST_F(SnapOverlayViewTest, TakesNeitherFocusNorClicks) {
    EXPECT_EQ(view.focusPolicy(), Qt::NoFocus);
    EXPECT_TRUE(view.testAttribute(Qt::WA_TransparentForMouseEvents));
    EXPECT_EQ(&view.widget(), &view);
}

TEST_F(SnapOverlayViewTest, OffersTheTilesForABlurBehindThem) {
    const QRegion area = view.blurArea();
    EXPECT_EQ(area.boundingRect(), leftTile().united(rightTile()));
    EXPECT_TRUE(area.contains(leftTile().center()));
    EXPECT_TRUE(area.contains(rightTile().center()));
    EXPECT_FALSE(area.intersects(QRect(496, 0, 8, 800)));
    EXPECT_FALSE(area.contains(leftTile().topLeft()));
    EXPECT_FALSE(area.contains(rightTile().bottomRight()));
    show({});
    EXPECT_TRUE(view.blurArea().isEmpty());
}

TEST_F(SnapOverlayViewTest, TellsTheAreasOfItsPresentSizeAndLayoutAlsoBeforeItIsShown) {
    view.hide();
    view.resize(600, 400);
    EXPECT_EQ(view.blurArea().boundingRect(), QRect(4, 4, 592, 392));
    model.setLayout(makeLayout({makeZone(0, 0, 0.5, 0.5)}));
    EXPECT_EQ(view.blurArea().boundingRect(), QRect(4, 4, 292, 192));
    EXPECT_EQ(view.outline().boundingRect(), QRect(4, 4, 292, 192));
}

TEST_F(SnapOverlayViewTest, LaysItsTilesOutOnceForOneShowing) {
    view.hide();
    const int before = view.layoutCount();
    model.setLayout(makeLayout({makeZone(0, 0, 0.5, 1), makeZone(0.5, 0, 0.5, 1)}));
    view.resize(1200, 900);
    model.setHighlightedZoneID(zone(1).id);
    // As a surface does.
    EXPECT_FALSE(view.blurArea().isEmpty());
    view.show();
    EXPECT_FALSE(view.outline().isEmpty());
    EXPECT_FALSE(picture().isNull());
    desktop.platform.fakeMainLoop.runPosted();
    model.setHighlightedZoneID(zone(0).id);
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_FALSE(picture().isNull());
    EXPECT_EQ(view.layoutCount(), before + 1);
}

TEST_F(SnapOverlayViewTest, TellsTheSurfaceOfChangedAreas) {
    int changes = 0;
    view.onAreasChanged([&] { ++changes; });
    highlight(zone(0).id);
    loop().advance(200ms);
    EXPECT_EQ(changes, 0);
    show({makeZone(0, 0, 1, 1)});
    EXPECT_EQ(changes, 1);
    view.resize(900, 700);
    EXPECT_EQ(changes, 2);
    view.setRendering(OverlayRendering::shaped);
    EXPECT_EQ(changes, 3);
    view.setRendering(OverlayRendering::shaped);
    EXPECT_EQ(changes, 3);
}

TEST_F(ShapedOverlay, IsTheBordersAndTheirDarkLinesAlone) {
    const QRegion outline = view.outline();
    EXPECT_EQ(outline.boundingRect(), leftTile().united(rightTile()));
    EXPECT_EQ(widthsAlong(outline, QRect(0, 400, 1000, 1)), (std::vector{2, 2, 2, 2}));
    EXPECT_FALSE(outline.contains(leftTile().center()));
    EXPECT_FALSE(outline.contains(leftTile().topLeft()));
    EXPECT_TRUE(outline.contains(QPoint(4, 400)));
    EXPECT_TRUE(outline.contains(QPoint(250, 4)));
    EXPECT_TRUE(outline.contains(QPoint(495, 400)));
    EXPECT_TRUE(outline.contains(QPoint(250, 795)));
}

TEST_F(ShapedOverlay, HasABorderOfThreePointsAndTheLineAroundTheHighlightedTile) {
    highlight(zone(1).id);
    loop().advance(120ms);
    const QRegion outline = view.outline();
    EXPECT_EQ(widthsAlong(outline, QRect(0, 400, 1000, 1)), (std::vector{2, 2, 4, 4}));
    EXPECT_EQ(outline.intersected(QRect(750, 0, 1, 100)).boundingRect(), QRect(750, 4, 1, 4));
    EXPECT_TRUE(outline.contains(QPoint(504, 400)));
    EXPECT_FALSE(outline.contains(QPoint(503, 400)));
}

TEST_F(ShapedOverlay, FollowsTheRoundedCorners) {
    const QRegion outline = view.outline();
    for (int y = 0; y < 16; ++y) {
        const QRegion row = outline.intersected(QRect(4, 4 + y, 16, 1));
        ASSERT_FALSE(row.isEmpty());
        const double rise = 16 - (y + 0.5);
        const double inset = 16 - std::sqrt((16.0 * 16) - (rise * rise));
        EXPECT_NEAR(row.boundingRect().left() - 4, inset, 0.51) << y;
    }
    // The border has no holes on its way round the corner.
    QRegion corner = outline.intersected(QRect(4, 4, 17, 17));
    QRegion reached(QRect(4, 20, 1, 1));
    for (int step = 0; step < 64; ++step) {
        QRegion grown = reached;
        for (const QRect& part : reached)
            grown += part.adjusted(-1, -1, 1, 1);
        reached = grown.intersected(corner);
    }
    EXPECT_EQ(reached, corner);
}

TEST_F(ShapedOverlay, IsOpaqueWhereverRoundingToPixelsCouldPutItsOutline) {
    highlight(zone(1).id);
    loop().advance(120ms);
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        const QImage image = picture(scale);
        for (const QRect& part : view.outline()) {
            const QRect pixels = QRectF(part.x() * scale, part.y() * scale, part.width() * scale,
                                        part.height() * scale)
                                     .toAlignedRect()
                                     .intersected(image.rect());
            for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
                for (int x = pixels.left(); x <= pixels.right(); ++x)
                    ASSERT_EQ(qAlpha(image.pixel(x, y)), 255) << x << ", " << y << " " << scale;
            }
        }
    }
}

TEST_F(ShapedOverlay, IsAmberAroundTheHighlightedTileAndALightGreyAroundTheOthers) {
    highlight(zone(1).id);
    loop().advance(120ms);
    const QImage image = picture();
    EXPECT_TRUE(looksLike(shadeOf(image.pixelColor(505, 400)), amber));
    EXPECT_TRUE(looksLike(shadeOf(image.pixelColor(4, 400)), over(white, 0.4, {0.5, 0.5, 0.5})));
}

TEST_F(ShapedOverlay, ChangesItsAreasOnlyWhenABorderBecomesAPointWider) {
    highlight(zone(0).id);
    loop().advance(200ms);
    // From one point to two and from two to three.
    EXPECT_EQ(areaChanges, 2);
    highlight(zone(1).id);
    loop().advance(200ms);
    EXPECT_GT(areaChanges, 2);
    EXPECT_LE(areaChanges, 6);
}

TEST_F(ShapedOverlay, IsNothingWithoutZones) {
    show({});
    EXPECT_TRUE(view.outline().isEmpty());
    EXPECT_EQ(areaChanges, 1);
}

TEST_F(ShapedOverlay, KeepsToTheSurface) {
    show({makeZone(-1, -1, 3, 3), makeZone(0.9, 0.9, 0.5, 0.5)});
    EXPECT_TRUE(view.rect().contains(view.outline().boundingRect()));
    EXPECT_TRUE(view.rect().contains(view.blurArea().boundingRect()));
}
