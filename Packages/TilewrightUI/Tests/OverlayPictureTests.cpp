// What the overlay shows as plain values: the numbers of what it paints.

#include "OverlayFixture.h"

#include <FakeScreens.h>

using namespace std::chrono_literals;

namespace tilewright::testing {
namespace {

class OverlayPictureTest : public OverlayFixture {
protected:
    [[nodiscard]] OverlayPicture valuesNow() const { return view.picture(display); }
    /// The colour of a point over a ground, worked out from the values alone: of a line or, where
    /// there is none, of the fill.
    [[nodiscard]] static Shade shadeOver(const Shade& ground, const OverlayPictureTile& tile,
                                         const OverlayColor& line = {}) {
        const auto shade = [](const OverlayColor& color) {
            return Shade{color.red, color.green, color.blue};
        };
        const Shade fill = over(shade(tile.fill), tile.fill.opacity, ground);
        return over(over(shade(line), line.opacity, fill), tile.opacity, ground);
    }
    [[nodiscard]] static Shade pixel(const QImage& image, double x, double y) {
        return shadeOf(image.pixelColor(static_cast<int>(x), static_cast<int>(y)));
    }

    const ScreenPtr display = makeScreen({.frame = {-300, 200, 1000, 800}});
};

} // namespace

TEST_F(OverlayPictureTest, TellsPlacesInPointsFromTheDisplaysTopLeftCorner) {
    show({makeZone(0, 0, 0.5, 1), makeZone(0.5, 0.25, 0.5, 0.5)});
    view.resize(10, 10);
    const OverlayPicture picture = valuesNow();
    EXPECT_EQ(picture.display, display);
    ASSERT_EQ(picture.tiles.size(), 2U);
    EXPECT_EQ(picture.tiles[0].id, zone(0).id);
    EXPECT_EQ(QRectF(picture.tiles[0].x, picture.tiles[0].y, picture.tiles[0].width,
                     picture.tiles[0].height),
              QRectF(4, 4, 492, 792))
        << "whatever size the widget has";
    EXPECT_EQ(QRectF(picture.tiles[1].x, picture.tiles[1].y, picture.tiles[1].width,
                     picture.tiles[1].height),
              QRectF(504, 204, 492, 392));
    EXPECT_EQ(picture.tiles[0].cornerRadius, 16);
}

TEST_F(OverlayPictureTest, KeepsTheDrawingOrderAndEachTileThatBearsAnId) {
    Zone above = makeZone(0.25, 0.25, 0.5, 0.5);
    const Zone below = makeZone(0, 0, 1, 1);
    above.id = below.id;
    show({below, above});
    highlight(below.id);
    const OverlayPicture picture = valuesNow();
    ASSERT_EQ(picture.tiles.size(), 2U);
    EXPECT_EQ(picture.tiles[0].width, 992);
    EXPECT_EQ(picture.tiles[1].width, 492);
    EXPECT_TRUE(picture.tiles[0].isHighlighted && picture.tiles[1].isHighlighted);
}

TEST_F(OverlayPictureTest, HasTheNumbersOfTheTwoStates) {
    show({makeZone(0, 0, 0.5, 1), makeZone(0.5, 0, 0.5, 1)});
    highlight(zone(1).id);
    const OverlayPicture picture = valuesNow();
    const OverlayPictureTile& plain = picture.tiles.at(0);
    EXPECT_FALSE(plain.isHighlighted);
    EXPECT_EQ(plain.opacity, 0.5);
    EXPECT_EQ(plain.borderWidth, 1);
    EXPECT_NEAR(plain.border.opacity, 0.4, 0.001);
    EXPECT_EQ(plain.border.red, 1);
    EXPECT_EQ(plain.light.width, 1);
    EXPECT_EQ(plain.light.color.red, 1);
    EXPECT_EQ(plain.dark.width, 1);
    EXPECT_EQ(plain.dark.color.red, 0);
    const OverlayPictureTile& highlighted = picture.tiles.at(1);
    EXPECT_TRUE(highlighted.isHighlighted);
    EXPECT_EQ(highlighted.opacity, 1);
    EXPECT_EQ(highlighted.borderWidth, 3);
    EXPECT_EQ(highlighted.border.opacity, 1);
    EXPECT_EQ(highlighted.light.width, 0) << "the accent is light enough";
    EXPECT_EQ(highlighted.dark.width, 1);
    EXPECT_NEAR(highlighted.border.red, 0.82, 0.001);
    EXPECT_NEAR(highlighted.border.green, 0.55, 0.001);
    EXPECT_NEAR(highlighted.border.blue, 0.20, 0.001);
    EXPECT_NEAR(highlighted.fill.opacity, 0.28, 0.001);
}

TEST_F(OverlayPictureTest, IsWhatTheViewPaints) {
    show({makeZone(0, 0, 0.5, 1), makeZone(0.5, 0, 0.5, 1)});
    highlight(zone(1).id);
    for (const Shade& ground : {white, black, amber}) {
        const QImage painted = pictureOver(ground);
        for (const OverlayPictureTile& tile : valuesNow().tiles) {
            const double middle = tile.y + tile.height / 2;
            EXPECT_TRUE(looksLike(pixel(painted, tile.x + tile.width / 2, middle),
                                  shadeOver(ground, tile)));
            double x = tile.x;
            for (const OverlayPictureLine& line :
                 {OverlayPictureLine{tile.borderWidth, tile.border}, tile.light, tile.dark}) {
                for (const double end = x + line.width; x < end; ++x)
                    EXPECT_TRUE(
                        looksLike(pixel(painted, x, middle), shadeOver(ground, tile, line.color)))
                        << x - tile.x << " from the edge";
            }
            EXPECT_TRUE(looksLike(pixel(painted, x, middle), shadeOver(ground, tile)))
                << "inside the lines";
            EXPECT_TRUE(looksLike(pixel(painted, tile.x - 1, middle), ground)) << "outside";
        }
    }
}

TEST_F(OverlayPictureTest, AnswersByTheModelAlsoBeforeItsChangeHasComeRoundTheLoop) {
    show({makeZone(0, 0, 1, 1)});
    model.setHighlightedZoneID(zone(0).id);
    EXPECT_TRUE(valuesNow().tiles.at(0).isHighlighted) << "at rest where it is on its way to";
}

TEST_F(OverlayPictureTest, LeavesOutWhatCannotBeSeen) {
    show({makeZone(0, 0, 0.008, 1), makeZone(0, 0, std::nan(""), 1), makeZone(0, 0, 1, 1)});
    EXPECT_EQ(valuesNow().tiles.size(), 1U);
    show({});
    EXPECT_TRUE(valuesNow().tiles.empty());
}

TEST_F(OverlayPictureTest, ChangesWithoutATransitionWhereTheUserWantsReducedMotion) {
    EXPECT_EQ(valuesNow().transition, 120ms);
    look::setPrefersReducedMotion(true);
    EXPECT_EQ(valuesNow().transition, 0ms);
    look::setPrefersReducedMotion(false);
}

TEST_F(OverlayPictureTest, IsAnnouncedOnceForTheChangesOfATurn) {
    show({makeZone(0, 0, 0.5, 1), makeZone(0.5, 0, 0.5, 1)});
    std::vector<OverlayPicture> told;
    view.onPictureChanged([&] { told.push_back(valuesNow()); });
    model.setHighlightedZoneID(zone(0).id);
    model.setHighlightedZoneID(zone(1).id);
    EXPECT_TRUE(told.empty());
    loop().runPosted();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_FALSE(told[0].tiles.at(0).isHighlighted);
    EXPECT_TRUE(told[0].tiles.at(1).isHighlighted);
}

} // namespace tilewright::testing
