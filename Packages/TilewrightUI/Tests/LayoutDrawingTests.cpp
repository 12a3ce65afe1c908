#include "ActiveWindow.h"
#include "ViewFixture.h"

#include <TilewrightUI/LayoutThumbnail.h>
#include <TilewrightUI/MiniLayoutPreview.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QTest>

namespace tilewright::testing {
namespace {

class LayoutDrawing : public ViewFixture {};

QColor at(const QImage& image, double x, double y) {
    const double scale = image.devicePixelRatio();
    return image.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
}

TEST_F(LayoutDrawing, AThumbnailFillsAndBordersItsZones) {
    LayoutThumbnail thumbnail(ZoneLayout::halves());
    thumbnail.resize(144, 90);
    const QColor ground = over(look::quaternary(thumbnail.palette()), Qt::white);
    const QColor fill = over(look::tilewrightAmber(0.22), ground);
    const QColor border = over(look::tilewrightAmber(0.7), fill);
    for (const double scale : {1.0, 2.0}) {
        const QImage image = picture(thumbnail, scale);
        expectNear(at(image, 36, 45), fill, "inside the left zone");
        expectNear(at(image, 108, 45), fill, "inside the right zone");
        for (const double x : {0.5, 71.5, 72.5, 143.5})
            expectNear(at(image, x, 45), border, "a side's border");
        for (const double y : {0.5, 89.5})
            expectNear(at(image, 36, y), border, "the top or bottom border");
        for (const double x : {1.5, 70.5, 73.5, 142.5})
            expectNear(at(image, x, 45), fill, "next to a border");
    }
}

TEST_F(LayoutDrawing, AThumbnailRoundsItsZonesByThreePointsAndItsGroundByFive) {
    LayoutThumbnail zones(ZoneLayout::halves());
    zones.resize(144, 90);
    const QImage image = picture(zones, 2);
    // Where two zones meet at the edge, their corners leave the ground uncovered.
    const QColor ground = over(look::quaternary(zones.palette()), Qt::white);
    expectNear(at(image, 71.75, 0.25), ground, "between two corners");
    expectNear(at(image, 0.25, 0.25), Qt::white, "outside the ground's corner");

    LayoutThumbnail empty(customLayout(QStringLiteral("Empty"), {}));
    empty.resize(144, 90);
    const QImage bare = picture(empty, 2);
    expectNear(at(bare, 0.75, 0.75), Qt::white, "outside the ground's corner");
    expectNear(at(bare, 5, 0.5), ground, "on the ground's edge");
    expectNear(at(bare, 72, 45), ground, "inside the ground");
}

TEST_F(LayoutDrawing, AThumbnailKeepsItsRatioInAnySpace) {
    LayoutThumbnail thumbnail(ZoneLayout::bentoBox());
    EXPECT_EQ(thumbnail.sizeHint(), QSize(144, 90));
    thumbnail.resize(268, 90);
    EXPECT_EQ(thumbnail.canvas(), QRectF(0, 0, 144, 90));
    thumbnail.resize(80, 90);
    EXPECT_EQ(thumbnail.canvas(), QRectF(0, 0, 80, 50));
    EXPECT_EQ(thumbnail.heightForWidth(160), 100);
    thumbnail.setLayoutDirection(Qt::RightToLeft);
    thumbnail.resize(268, 90);
    EXPECT_EQ(thumbnail.canvas(), QRectF(124, 0, 144, 90));
}

TEST_F(LayoutDrawing, AThumbnailDrawsZonesWhereTheyAreInRightToLeftDesktopsToo) {
    LayoutThumbnail thumbnail(customLayout(QStringLiteral("Left"), {{0, 0, 0.5, 1}}));
    thumbnail.setLayoutDirection(Qt::RightToLeft);
    thumbnail.resize(144, 90);
    const QColor ground = over(look::quaternary(thumbnail.palette()), Qt::white);
    const QImage image = picture(thumbnail, 1);
    expectNear(at(image, 36, 45), over(look::tilewrightAmber(0.22), ground), "the zone");
    expectNear(at(image, 108, 45), ground, "beside the zone");
}

TEST_F(LayoutDrawing, AThumbnailTellsWhichZoneWasChosen) {
    std::vector<QString> chosen;
    LayoutThumbnail thumbnail(ZoneLayout::bentoBox(),
                              [&](const Zone& zone) { chosen.push_back(zone.name); });
    thumbnail.resize(144, 90);
    thumbnail.show();
    const std::vector<std::pair<QPoint, QString>> clicks{
        {{1, 1}, QStringLiteral("Primary")},     {{88, 88}, QStringLiteral("Primary")},
        {{90, 2}, QStringLiteral("Top Right")},  {{143, 48}, QStringLiteral("Top Right")},
        {{95, 60}, QStringLiteral("Mid Right")}, {{142, 88}, QStringLiteral("Bottom Right")}};
    for (const auto& [point, name] : clicks) {
        chosen.clear();
        QWidget* target = thumbnail.childAt(point);
        ASSERT_NE(target, nullptr);
        QTest::mouseClick(target, Qt::LeftButton, {}, target->mapFrom(&thumbnail, point));
        ASSERT_EQ(chosen.size(), 1U);
        EXPECT_EQ(chosen.front(), name);
    }
}

TEST_F(LayoutDrawing, AThumbnailsLaterZonesLieAboveEarlierOnes) {
    std::vector<QUuid> chosen;
    const ZoneLayout layout =
        customLayout(QStringLiteral("Stack"), {{0, 0, 1, 1}, {0.25, 0.25, 0.5, 0.5}});
    LayoutThumbnail thumbnail(layout, [&](const Zone& zone) { chosen.push_back(zone.id); });
    thumbnail.resize(144, 90);
    thumbnail.show();
    QWidget* middle = thumbnail.childAt(72, 45);
    ASSERT_NE(middle, nullptr);
    QTest::mouseClick(middle, Qt::LeftButton);
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front(), layout.zones[1].id);
}

TEST_F(LayoutDrawing, AThumbnailsZonesAreReachedAndUsedByKeyboard) {
    std::vector<QString> chosen;
    LayoutThumbnail thumbnail(ZoneLayout::thirds(),
                              [&](const Zone& zone) { chosen.push_back(zone.name); });
    thumbnail.resize(144, 90);
    thumbnail.show();
    makeActive(thumbnail);
    thumbnail.zoneButtons().front()->setFocus();
    const QImage first = picture(thumbnail, 1);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_NE(picture(thumbnail, 1), first);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
    EXPECT_EQ(chosen, (std::vector<QString>{QStringLiteral("Left"), QStringLiteral("Center"),
                                            QStringLiteral("Right")}));
}

TEST_F(LayoutDrawing, AThumbnailsZonesAreNamedForAssistiveTools) {
    LayoutThumbnail thumbnail(ZoneLayout::halves(), [](const Zone&) {});
    ASSERT_EQ(thumbnail.zoneButtons().size(), 2U);
    QAccessibleInterface* zone =
        QAccessible::queryAccessibleInterface(thumbnail.zoneButtons().front());
    ASSERT_NE(zone, nullptr);
    EXPECT_EQ(zone->role(), QAccessible::Button);
    EXPECT_EQ(zone->text(QAccessible::Name), QStringLiteral("Snap to Left"));
}

TEST_F(LayoutDrawing, AThumbnailWithoutActionIsAPicture) {
    LayoutThumbnail thumbnail(ZoneLayout::halves());
    EXPECT_TRUE(thumbnail.zoneButtons().empty());
}

TEST_F(LayoutDrawing, AThumbnailFollowsItsLayout) {
    LayoutThumbnail thumbnail(ZoneLayout::halves(), [](const Zone&) {});
    thumbnail.resize(144, 90);
    const QImage halves = picture(thumbnail, 1);
    thumbnail.setZoneLayout(ZoneLayout::quadrants());
    EXPECT_EQ(thumbnail.zoneButtons().size(), 4U);
    EXPECT_NE(picture(thumbnail, 1), halves);
}

TEST_F(LayoutDrawing, ZonesOutsideTheUnitSquareDoNoHarm) {
    const ZoneLayout layout = customLayout(
        QStringLiteral("Odd"), {{-1, -1, 3, 3}, {2, 2, 1, 1}, {0.5, 0.5, 0, 0}, {0, 0, -1, 0.5}});
    LayoutThumbnail thumbnail(layout, [](const Zone&) {});
    thumbnail.resize(144, 90);
    thumbnail.show();
    EXPECT_EQ(thumbnail.zoneButtons()[0]->geometry(), QRect(0, 0, 144, 90));
    EXPECT_TRUE(thumbnail.zoneButtons()[1]->geometry().isEmpty());
    EXPECT_FALSE(picture(thumbnail, 1).isNull());
    MiniLayoutPreview preview(layout);
    preview.resize(72, 42);
    EXPECT_FALSE(picture(preview, 1).isNull());
}

TEST_F(LayoutDrawing, APreviewInsetsFillsAndStrokesEachZone) {
    MiniLayoutPreview preview(ZoneLayout::halves());
    preview.resize(72, 42);
    const QColor ground = over(look::quaternary(preview.palette()), Qt::white);
    const QColor fill = over(look::tilewrightAmber(0.25), ground);
    // The stroke lies half on the fill, half on the ground.
    const QColor inner = over(look::tilewrightAmber(0.75), fill);
    const QColor outer = over(look::tilewrightAmber(0.75), ground);
    const QImage image = picture(preview, 2);
    expectNear(at(image, 18, 21), fill, "inside the left zone");
    expectNear(at(image, 54, 21), fill, "inside the right zone");
    expectNear(at(image, 0.25, 21), ground, "the margin");
    expectNear(at(image, 0.75, 21), outer, "the stroke's outer half");
    expectNear(at(image, 1.25, 21), inner, "the stroke's inner half");
    expectNear(at(image, 1.75, 21), fill, "within the stroke");
    // The gap of two points between zones, less half a stroke on either side.
    expectNear(at(image, 35.75, 21), ground, "between the zones");
    expectNear(at(image, 36.25, 21), ground, "between the zones");
    expectNear(at(image, 34.75, 21), inner, "the left zone's right stroke");
    expectNear(at(image, 37.25, 21), inner, "the right zone's left stroke");
    expectNear(at(image, 18, 1.25), inner, "the top stroke");
    expectNear(at(image, 18, 40.75), inner, "the bottom stroke");
}

TEST_F(LayoutDrawing, APreviewAtScaleOneFillsTheSamePlaces) {
    MiniLayoutPreview preview(ZoneLayout::quadrants());
    preview.resize(72, 42);
    const QColor ground = over(look::quaternary(preview.palette()), Qt::white);
    const QColor fill = over(look::tilewrightAmber(0.25), ground);
    const QImage image = picture(preview, 1);
    for (const double x : {18.0, 54.0}) {
        for (const double y : {10.0, 31.0})
            expectNear(at(image, x, y), fill, "inside a zone");
    }
}

TEST_F(LayoutDrawing, APreviewHighlightsOneZone) {
    MiniLayoutPreview preview(ZoneLayout::halves());
    preview.resize(72, 42);
    const QColor ground = over(look::quaternary(preview.palette()), Qt::white);
    preview.setHighlightedZoneID(ZoneLayout::halves().zones[1].id);
    const QImage image = picture(preview, 2);
    expectNear(at(image, 18, 21), over(look::tilewrightAmber(0.25), ground), "the plain zone");
    expectNear(at(image, 54, 21), over(look::tilewrightAmber(0.5), ground), "the highlighted one");
}

TEST_F(LayoutDrawing, APreviewsGroundHasRoundCornersOfFourPoints) {
    MiniLayoutPreview preview(customLayout(QStringLiteral("Empty"), {}));
    preview.resize(72, 42);
    const QImage image = picture(preview, 2);
    expectNear(at(image, 0.5, 0.5), Qt::white, "outside the corner");
    expectNear(at(image, 4.5, 0.25), over(look::quaternary(preview.palette()), Qt::white),
               "where the side begins");
}

TEST_F(LayoutDrawing, APreviewTooSmallForItsZonesDrawsWhatFits) {
    MiniLayoutPreview preview(ZoneLayout::thirds());
    preview.resize(5, 2);
    EXPECT_FALSE(picture(preview, 2).isNull());
}

} // namespace
} // namespace tilewright::testing
