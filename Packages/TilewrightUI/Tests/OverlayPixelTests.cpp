#include "OverlayFixture.h"

#include <TilewrightUI/Contrast.h>

#include <QLinearGradient>
#include <QRandomGenerator>
#include <limits>
#include <set>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

constexpr double plainOpacity = 0.5;
constexpr Shade neutral{0.5, 0.5, 0.5};
constexpr double neutralOpacity = 0.30;

Shade plainFillOver(const Shade& ground) {
    return over(neutral, neutralOpacity * plainOpacity, ground);
}

/// The border lies on the fill, and the tile as a whole is half transparent.
Shade plainBorderOver(const Shade& ground) {
    const Shade tile = over(white, 0.4, over(neutral, neutralOpacity, ground));
    return over(tile, plainOpacity, ground);
}

Shade highlightedFillOver(const Shade& ground) {
    return over(amber, 0.28, ground);
}

/// Two halves of an overlay of 1000 x 800 points, the right one highlighted.
class OverlayPixels : public OverlayFixture {
protected:
    OverlayPixels() {
        show({makeZone(0, 0, 0.5, 1), makeZone(0.5, 0, 0.5, 1)});
        highlight(zone(1).id);
    }

    /// The overlay over a ground where its window is cut to what it draws.
    QImage cutOver(QImage ground, const QImage& overlay, int scale) {
        QPainter painter(&ground);
        painter.setClipRegion(QTransform::fromScale(scale, scale).map(view.outline()));
        painter.drawImage(0, 0, overlay);
        return ground;
    }

    void expectShades(const Shade& ground, double scale) {
        const QImage image = pictureOver(ground, scale);
        const auto at = [&](double x, double y) {
            return shadeOf(image.pixelColor(QPointF(x * scale, y * scale).toPoint()));
        };
        EXPECT_TRUE(looksLike(at(250, 400), plainFillOver(ground)));
        EXPECT_TRUE(looksLike(at(4.25, 400), plainBorderOver(ground)));
        EXPECT_TRUE(looksLike(at(750, 400), highlightedFillOver(ground)));
        EXPECT_TRUE(looksLike(at(505, 400), amber));
        EXPECT_TRUE(looksLike(at(500, 400), ground));
        EXPECT_TRUE(looksLike(at(2, 400), ground));
    }
};

/// How many pixels in a row from (x, y) rightward look like the shade.
int runOf(const QImage& image, int x, int y, const Shade& shade) {
    int length = 0;
    while (x + length < image.width() && looksLike(shadeOf(image.pixelColor(x + length, y)), shade))
        ++length;
    return length;
}

int downwardRunOf(const QImage& image, int x, int y, const Shade& shade) {
    return runOf(image.transformed(QTransform(0, 1, 1, 0, 0, 0)), y, x, shade);
}

/// The greatest contrast of two neighbours on the way from outside a tile at (x, y), over its
/// border and lines, into it, rightward. `apart` says how many pixels a neighbour is away.
double greatestContrast(const QImage& image, int x, int y, int length, int apart = 1) {
    double greatest = 1;
    for (int step = 0; step < length; ++step)
        greatest = std::max(greatest, look::contrast(image.pixelColor(x + step, y),
                                                     image.pixelColor(x + step + apart, y)));
    return greatest;
}

/// White, black and 14 greys between them.
std::vector<Shade> sixteenGrounds() {
    std::vector<Shade> grounds;
    for (int step = 0; step < 16; ++step)
        grounds.push_back({step / 15.0, step / 15.0, step / 15.0});
    return grounds;
}

/// Looks at the image's top-left corner, in pixels. The lines lie between border and fill.
void expectRoundCorner(const QImage& image, int radius, int border, int lines, double borderAlpha,
                       double fillAlpha) {
    for (int y = 0; y < radius; ++y) {
        for (int x = 0; x < radius; ++x) {
            const double distance = std::hypot(radius - (x + 0.5), radius - (y + 0.5));
            const int alpha = qAlpha(image.pixel(x, y));
            if (distance > radius + 0.8) {
                EXPECT_EQ(alpha, 0) << x << ", " << y;
            } else if (distance < radius - border - lines - 0.8) {
                EXPECT_NEAR(alpha, fillAlpha * 255, 1.5) << x << ", " << y;
            } else if (distance < radius - 0.8 && distance > radius - border + 0.8) {
                EXPECT_NEAR(alpha, borderAlpha * 255, 1.5) << x << ", " << y;
            }
        }
    }
}

QImage photo(const QSize& size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    QLinearGradient gradient(0, 0, size.width(), size.height());
    gradient.setColorAt(0, QColor(20, 60, 120));
    gradient.setColorAt(0.6, QColor(220, 160, 90));
    gradient.setColorAt(1, QColor(240, 240, 250));
    painter.fillRect(image.rect(), gradient);
    painter.end();
    QRandomGenerator random(20240607);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int grain = random.bounded(-12, 13);
            const QColor color = image.pixelColor(x, y);
            image.setPixelColor(x, y,
                                QColor(std::clamp(color.red() + grain, 0, 255),
                                       std::clamp(color.green() + grain, 0, 255),
                                       std::clamp(color.blue() + grain, 0, 255)));
        }
    }
    return image;
}

/// The picture with its sides changed over, or its upper and its lower edge, or both.
QImage flipped(const QImage& picture, bool sideways, bool upended) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 9, 0)
    Qt::Orientations along;
    along.setFlag(Qt::Horizontal, sideways);
    along.setFlag(Qt::Vertical, upended);
    return picture.flipped(along);
#else
    return picture.mirrored(sideways, upended);
#endif
}

} // namespace

TEST_F(OverlayPixels, HaveTheirShadesOverWhite) {
    expectShades(white, 1);
    expectShades(white, 2);
}

TEST_F(OverlayPixels, HaveTheirShadesOverBlack) {
    expectShades(black, 1);
    expectShades(black, 2);
}

TEST_F(OverlayPixels, HaveTheirShadesOverAPhotograph) {
    for (const int scale : {1, 2}) {
        const QImage ground = photo(view.size() * scale);
        const QImage image = blended(picture(scale), ground);
        for (int y = 30 * scale; y < 770 * scale; y += 37) {
            for (int x = 30 * scale; x < 470 * scale; x += 11) {
                const Shade left = shadeOf(ground.pixelColor(x, y));
                ASSERT_TRUE(looksLike(shadeOf(image.pixelColor(x, y)), plainFillOver(left)));
                const int across = x + 500 * scale;
                const Shade right = shadeOf(ground.pixelColor(across, y));
                ASSERT_TRUE(
                    looksLike(shadeOf(image.pixelColor(across, y)), highlightedFillOver(right)));
            }
            for (int x = 4 * scale; x < 5 * scale; ++x) {
                const Shade edge = shadeOf(ground.pixelColor(x, y));
                ASSERT_TRUE(looksLike(shadeOf(image.pixelColor(x, y)), plainBorderOver(edge)));
            }
            for (int x = 504 * scale; x < 507 * scale; ++x)
                ASSERT_TRUE(looksLike(shadeOf(image.pixelColor(x, y)), amber));
            for (int x = 496 * scale; x < 504 * scale; ++x)
                ASSERT_EQ(image.pixel(x, y), ground.pixel(x, y));
        }
    }
}

TEST_F(OverlayPixels, ShowPlainTilesOverWhiteAsWellAsOverBlack) {
    for (const Shade& ground : {white, black}) {
        const Shade tile = shadeOf(pictureOver(ground).pixelColor(250, 400));
        EXPECT_GT(std::abs(tile.green - ground.green), 0.05);
    }
}

TEST_F(OverlayPixels, LeaveFourPointsAtEachSideAndEightBetweenNeighbours) {
    for (const double scale : {1.0, 2.0}) {
        const QImage image = pictureOver(black, scale);
        const int pixels = static_cast<int>(scale);
        EXPECT_EQ(runOf(image, 0, 400 * pixels, black), 4 * pixels);
        EXPECT_EQ(runOf(image, 496 * pixels, 400 * pixels, black), 8 * pixels);
        EXPECT_EQ(runOf(image, 996 * pixels, 400 * pixels, black), 4 * pixels);
        EXPECT_EQ(downwardRunOf(image, 250 * pixels, 0, black), 4 * pixels);
        EXPECT_EQ(downwardRunOf(image, 250 * pixels, 796 * pixels, black), 4 * pixels);
        EXPECT_FALSE(looksLike(shadeOf(image.pixelColor(496 * pixels - 1, 400 * pixels)), black));
    }
}

TEST_F(OverlayPixels, HaveBordersOfOneAndThreePointsInsideTheEdge) {
    for (const double scale : {1.0, 2.0}) {
        const QImage image = pictureOver(black, scale);
        const int pixels = static_cast<int>(scale);
        const int middle = 400 * pixels;
        EXPECT_EQ(runOf(image, 4 * pixels, middle, plainBorderOver(black)), pixels);
        EXPECT_EQ(runOf(image, 495 * pixels, middle, plainBorderOver(black)), pixels);
        EXPECT_EQ(runOf(image, 504 * pixels, middle, amber), 3 * pixels);
        EXPECT_EQ(runOf(image, 993 * pixels, middle, amber), 3 * pixels);
        EXPECT_EQ(downwardRunOf(image, 250 * pixels, 4 * pixels, plainBorderOver(black)), pixels);
        EXPECT_EQ(downwardRunOf(image, 750 * pixels, 793 * pixels, amber), 3 * pixels);
    }
}

TEST_F(OverlayPixels, RoundEachCornerByARadiusOfSixteenPoints) {
    struct Look {
        QRect tile;
        int border;
        int lines;
        double borderAlpha;
        double fillAlpha;
    };
    const std::vector<Look> looks{{{4, 4, 492, 792},
                                   1,
                                   2,
                                   (0.4 + (neutralOpacity * 0.6)) * plainOpacity,
                                   neutralOpacity * plainOpacity},
                                  {{504, 4, 492, 792}, 3, 1, 1, 0.28}};
    for (const int scale : {1, 2}) {
        for (const Look& look : looks) {
            const QImage tile =
                picture(scale).copy(QRect(look.tile.topLeft() * scale, look.tile.size() * scale));
            for (const bool fromTheRight : {false, true}) {
                for (const bool fromBelow : {false, true})
                    expectRoundCorner(flipped(tile, fromTheRight, fromBelow), 16 * scale,
                                      look.border * scale, look.lines * scale, look.borderAlpha,
                                      look.fillAlpha);
            }
        }
    }
}

TEST_F(OverlayPixels, KeepTheirWidthsAndGapsWhereTheyAreCutToTheirBorders) {
    view.setRendering(OverlayRendering::shaped);
    const Shade plain = over(white, 0.4, neutral);
    const Shade dark = over(black, 0.9, neutral);
    for (const int scale : {1, 2}) {
        const QImage overlay = picture(scale);
        QImage image(overlay.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        image = cutOver(image, overlay, scale);
        const int middle = 400 * scale;
        EXPECT_EQ(runOf(image, 0, middle, white), 4 * scale);
        EXPECT_EQ(runOf(image, 4 * scale, middle, plain), scale);
        EXPECT_EQ(runOf(image, 5 * scale, middle, dark), scale);
        EXPECT_EQ(runOf(image, 6 * scale, middle, white), 488 * scale);
        EXPECT_EQ(runOf(image, 494 * scale, middle, dark), scale);
        EXPECT_EQ(runOf(image, 495 * scale, middle, plain), scale);
        EXPECT_EQ(runOf(image, 496 * scale, middle, white), 8 * scale);
        EXPECT_EQ(runOf(image, 504 * scale, middle, amber), 3 * scale);
        EXPECT_EQ(runOf(image, 507 * scale, middle, dark), scale);
        EXPECT_EQ(runOf(image, 508 * scale, middle, white), 484 * scale);
        EXPECT_EQ(runOf(image, 993 * scale, middle, amber), 3 * scale);
        EXPECT_EQ(runOf(image, 996 * scale, middle, white), 4 * scale);
        EXPECT_EQ(downwardRunOf(image, 250 * scale, 0, white), 4 * scale);
        EXPECT_EQ(downwardRunOf(image, 250 * scale, 4 * scale, plain), scale);
        EXPECT_EQ(downwardRunOf(image, 250 * scale, 5 * scale, dark), scale);
        EXPECT_EQ(downwardRunOf(image, 750 * scale, 793 * scale, amber), 3 * scale);
    }
}

TEST_F(OverlayPixels, StandOutFromWhiteBlackAndEachGreyBetween) {
    for (const Shade& ground : sixteenGrounds()) {
        for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
            const QImage image = pictureOver(ground, scale);
            // Between two lines lies a pixel of half their hues where a point is a broken number.
            const int apart = scale == std::floor(scale) ? 1 : 2;
            for (const int edge : {0, 500}) {
                EXPECT_GE(greatestContrast(image, qRound(edge * scale), qRound(400 * scale),
                                           qRound(20 * scale), apart),
                          3)
                    << "ground " << ground.red << ", scale " << scale << ", tile at " << edge;
            }
        }
    }
}

TEST_F(OverlayPixels, StandOutFromEachOfThemWhereTheyAreCutToTheirBorders) {
    view.setRendering(OverlayRendering::shaped);
    for (const Shade& ground : sixteenGrounds()) {
        for (const int scale : {1, 2}) {
            const QImage overlay = picture(scale);
            QImage image(overlay.size(), QImage::Format_ARGB32_Premultiplied);
            image.fill(colorOf(ground));
            image = cutOver(image, overlay, scale);
            for (const int edge : {0, 500})
                EXPECT_GE(greatestContrast(image, edge * scale, 400 * scale, 20 * scale), 3)
                    << "ground " << ground.red << ", scale " << scale << ", tile at " << edge;
        }
    }
}

TEST_F(OverlayPixels, AreAllPlainWithoutAHighlightedZone) {
    highlight(std::nullopt);
    const QImage image = pictureOver(black);
    for (const int x : {250, 750})
        EXPECT_TRUE(looksLike(shadeOf(image.pixelColor(x, 400)), plainFillOver(black)));
    for (const int x : {4, 504})
        EXPECT_TRUE(looksLike(shadeOf(image.pixelColor(x, 400)), plainBorderOver(black)));
    highlight(QUuid::createUuid());
    EXPECT_EQ(pictureOver(black), image);
}

TEST_F(OverlayPixels, AreHalfTransparentAsAWholeUnlessHighlighted) {
    const QImage image = picture();
    EXPECT_NEAR(qAlpha(image.pixel(250, 400)), neutralOpacity * plainOpacity * 255, 1);
    const double borderAlpha = 0.4 + (neutralOpacity * 0.6);
    EXPECT_NEAR(qAlpha(image.pixel(4, 400)), borderAlpha * plainOpacity * 255, 1);
    EXPECT_NEAR(qAlpha(image.pixel(750, 400)), 0.28 * 255, 1);
    EXPECT_EQ(qAlpha(image.pixel(505, 400)), 255);
}

TEST_F(OverlayPixels, AreCrispWhereAZonesEdgesFallBetweenPixels) {
    view.resize(1366, 769);
    show({makeZone(0, 0, 0.62, 1), makeZone(0.62, 0, 0.38, 0.55), makeZone(0.62, 0.55, 0.19, 0.45),
          makeZone(0.81, 0.55, 0.19, 0.45)});
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        const QImage image = picture(scale);
        std::set<int> alphas;
        const int y = image.height() / 4;
        for (int x = 0; x < image.width(); ++x)
            alphas.insert(qAlpha(image.pixel(x, y)));
        // Nothing, the fill, the border and the two lines; a border of a broken number of pixels
        // has one half hue.
        const bool isWhole = scale == std::floor(scale);
        EXPECT_EQ(alphas.size(), isWhole ? 5U : 6U) << scale;
    }
}

TEST_F(OverlayPixels, AreNotThereWithoutZones) {
    show({});
    const QImage image = picture();
    QImage nothing = image;
    nothing.fill(Qt::transparent);
    EXPECT_EQ(image, nothing);
}

TEST_F(OverlayPixels, AreNotThereForAZoneNoLargerThanTheGap) {
    show({makeZone(0.1, 0.1, 0.008, 0.5), makeZone(0.3, 0.3, 0.5, 0.01), makeZone(0.5, 0.5, 0, 0),
          makeZone(0.9, 0.9, -0.5, -0.5)});
    const QImage image = picture();
    QImage nothing = image;
    nothing.fill(Qt::transparent);
    EXPECT_EQ(image, nothing);
}

TEST_F(OverlayPixels, ShowATileNarrowerThanItsBordersAsBorderAlone) {
    show({makeZone(0.1, 0.1, 0.012, 0.5)});
    highlight(zone(0).id);
    const QImage image = picture();
    // Four points wide, between borders of three.
    EXPECT_EQ(runOf(image, 104, 280, amber), 4);
    EXPECT_EQ(qAlpha(image.pixel(103, 280)), 0);
    EXPECT_EQ(qAlpha(image.pixel(108, 280)), 0);
}

TEST_F(OverlayPixels, SurviveZonesOfAnyNumbers) {
    const double huge = std::numeric_limits<double>::max();
    const double infinite = std::numeric_limits<double>::infinity();
    const double none = std::numeric_limits<double>::quiet_NaN();
    show({makeZone(huge, 0, huge, 1), makeZone(-huge, -huge, huge, huge),
          makeZone(infinite, 0, 1, 1), makeZone(none, 0, 1, 1), makeZone(0, 0, none, 1),
          makeZone(0, 0, infinite, infinite)});
    QImage nothing(view.size(), QImage::Format_ARGB32_Premultiplied);
    nothing.fill(Qt::transparent);
    EXPECT_EQ(picture(), nothing);
    // A zone far larger than the display covers it; its border lies outside.
    show({makeZone(-1e9, -1e9, 2e9, 2e9)});
    EXPECT_TRUE(looksLike(shadeOf(pictureOver(black).pixelColor(0, 0)), plainFillOver(black)));
    EXPECT_TRUE(looksLike(shadeOf(pictureOver(black).pixelColor(999, 799)), plainFillOver(black)));
}

TEST_F(OverlayPixels, StackALaterZoneOverAnEarlierOne) {
    show({makeZone(0, 0, 1, 1), makeZone(0.25, 0.25, 0.5, 0.5)});
    highlight(zone(0).id);
    const QImage image = pictureOver(black);
    EXPECT_TRUE(looksLike(shadeOf(image.pixelColor(100, 100)), highlightedFillOver(black)));
    EXPECT_TRUE(
        looksLike(shadeOf(image.pixelColor(500, 400)), plainFillOver(highlightedFillOver(black))));
    EXPECT_TRUE(looksLike(shadeOf(image.pixelColor(254, 400)),
                          plainBorderOver(highlightedFillOver(black))));
    highlight(zone(1).id);
    const QImage other = pictureOver(black);
    EXPECT_TRUE(
        looksLike(shadeOf(other.pixelColor(500, 400)), highlightedFillOver(plainFillOver(black))));
    EXPECT_TRUE(looksLike(shadeOf(other.pixelColor(255, 400)), amber));
}

TEST_F(OverlayPixels, HighlightEachZoneThatBearsTheId) {
    Zone twin = makeZone(0.5, 0, 0.5, 1);
    const Zone first = makeZone(0, 0, 0.5, 1);
    twin.id = first.id;
    show({first, twin});
    highlight(first.id);
    const QImage image = pictureOver(black);
    EXPECT_TRUE(looksLike(shadeOf(image.pixelColor(250, 400)), highlightedFillOver(black)));
    EXPECT_TRUE(looksLike(shadeOf(image.pixelColor(750, 400)), highlightedFillOver(black)));
}

TEST_F(OverlayPixels, ReplaceWhateverWasOnTheirSurface) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        const QImage clean = picture(scale);
        QImage soiled(clean.size(), QImage::Format_ARGB32_Premultiplied);
        soiled.setDevicePixelRatio(scale);
        soiled.fill(Qt::magenta);
        view.render(&soiled, {}, {}, {});
        soiled.setDevicePixelRatio(1);
        EXPECT_EQ(soiled, clean) << scale;
    }
}

TEST_F(OverlayPixels, FadeBetweenTheTwoLooks) {
    highlight(std::nullopt);
    view.show();
    highlight(zone(0).id);
    std::vector<int> alphas;
    for (int frame = 0; frame <= HighlightFade::duration / HighlightFade::frame; ++frame) {
        alphas.push_back(qAlpha(picture().pixel(250, 400)));
        loop().advance(HighlightFade::frame);
    }
    EXPECT_TRUE(std::is_sorted(alphas.begin(), alphas.end()));
    EXPECT_GT(alphas.front(), static_cast<int>(neutralOpacity * plainOpacity * 255));
    EXPECT_LT(alphas.front(), alphas[3]);
    EXPECT_LT(alphas[3], alphas.back());
    EXPECT_NEAR(alphas.back(), 0.28 * 255, 1);
}
