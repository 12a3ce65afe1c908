#include <Platform/QtSpace.h>

#include <gtest/gtest.h>

using namespace tilewright;

namespace {

/// A monitor of 1920 × 1080 whose top-left corner lies elsewhere than the desktop's.
class QtSpaceAtScale : public ::testing::TestWithParam<double> {
protected:
    [[nodiscard]] AppKitRect frame() const { return {corner.x, corner.y - 1080, 1920, 1080}; }
    /// What lies so far to the right of the corner, and below it.
    [[nodiscard]] AppKitRect part(double x, double y, double width, double height) const {
        return {corner.x + x, corner.y - y - height, width, height};
    }

    const double scale = GetParam();
    const AppKitPoint corner{-1920, 1380};
    const QtPoint qtCorner{-1920, -300};
    const QtSpace space{nullptr, corner, qtCorner, scale};
};

} // namespace

TEST_P(QtSpaceAtScale, KeepsTheCornerAndScalesAboutIt) {
    const QtRect qt{qtCorner.x + 40, qtCorner.y + 20, 80, 60};
    const AppKitRect appKit = part(40 * scale, 20 * scale, 80 * scale, 60 * scale);
    EXPECT_EQ(space.toAppKit(qt), appKit);
    EXPECT_EQ(space.toQt(appKit), qt);
    EXPECT_EQ(space.insideQt(appKit), qt);
}

TEST_P(QtSpaceAtScale, TakesEveryRectangleBackToWhereItWas) {
    for (int at = 0; at < 500; ++at) {
        const QtRect rect{qtCorner.x + at, qtCorner.y + 2 * at, at + 1, 7};
        ASSERT_EQ(space.toQt(space.toAppKit(rect)), rect);
    }
}

TEST_P(QtSpaceAtScale, KeepsNeighboursNeighbours) {
    for (int border = 1; border < 1920; ++border) {
        const QtRect left = space.toQt(part(0, 0, border, 1080));
        const QtRect right = space.toQt(part(border, 0, 1920 - border, 1080));
        ASSERT_EQ(left.maxX(), right.x) << border;
        ASSERT_NEAR((right.x - qtCorner.x) * scale, border, scale / 2);
    }
}

TEST_P(QtSpaceAtScale, FindsTheLargestRectangleInside) {
    for (int edge = 1; edge < 200; ++edge) {
        const AppKitRect outer = part(edge, edge, 1003 - edge, 701);
        const QtRect inner = space.insideQt(outer);
        const AppKitRect back = space.toAppKit(inner);
        ASSERT_GE(back.minX(), outer.minX());
        ASSERT_LE(back.maxX(), outer.maxX());
        ASSERT_GE(back.minY(), outer.minY());
        ASSERT_LE(back.maxY(), outer.maxY());
        ASSERT_LT(back.minX() - outer.minX(), scale);
        ASSERT_LT(outer.maxX() - back.maxX(), scale);
        ASSERT_LT(back.minY() - outer.minY(), scale);
        ASSERT_LT(outer.maxY() - back.maxY(), scale);
    }
}

TEST_P(QtSpaceAtScale, HasThePlaceOfEveryPixelOnTheScreen) {
    const QRect screen = space.toQt(frame()).toQRect();
    for (int pixel = 0; pixel < 1920; ++pixel) {
        // A place that is only a point is a pixel's centre.
        const QtRect place = space.toQt(part(pixel + 0.5, 1079.5, 0, 0));
        EXPECT_EQ(place.toQRect().size(), QSize(0, 0));
        ASSERT_TRUE(screen.contains(place.toQRect().topLeft())) << pixel;
        ASSERT_LE((place.x - qtCorner.x) * scale, pixel + 0.5);
        ASSERT_GT((place.x + 1 - qtCorner.x) * scale, pixel + 0.5);
    }
}

TEST_P(QtSpaceAtScale, LaysMonitorsOfDifferentOriginWhereQtHasThem) {
    // Right of the one at (-1920, -300), and lower.
    const QtSpace other(nullptr, {0, 1080}, {0, 0}, scale);
    const AppKitRect item{100 * scale, 1080 - 30 * scale, 20 * scale, 30 * scale};
    EXPECT_EQ(other.toQt(item), (QtRect{100, 0, 20, 30}));
    EXPECT_EQ(space.toQt(part(100 * scale, 0, 20 * scale, 30 * scale)),
              (QtRect{-1820, -300, 20, 30}));
}

INSTANTIATE_TEST_SUITE_P(, QtSpaceAtScale, ::testing::Values(1, 1.25, 1.5, 2),
                         [](const auto& parameter) {
                             return std::to_string(static_cast<int>(parameter.param * 100)) +
                                    "Percent";
                         });

TEST(QtSpace, CountsAlikeWithoutAScreenOfQts) {
    EXPECT_EQ(QtSpace().toAppKit({3, -10, 4, 10}), (AppKitRect{3, 0, 4, 10}));
    EXPECT_EQ(QtSpace().toQt({3, 0, 4, 10}), (QtRect{3, -10, 4, 10}));
}

TEST(AppKitRect, HasItsCentreWhereItLiesWhenItIsEmpty) {
    const AppKitRect click{1920.5, 500.5, 0, 0};
    EXPECT_TRUE(click.isEmpty());
    EXPECT_EQ(click.center(), (AppKitPoint{1920.5, 500.5}));
    EXPECT_EQ((AppKitRect{10, 20, 4, 6}.center()), (AppKitPoint{12, 23}));
}
