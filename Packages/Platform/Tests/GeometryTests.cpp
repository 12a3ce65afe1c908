#include <Platform/Geometry.h>

#include <gtest/gtest.h>

using namespace tilewright;

TEST(AppKitRect, HoldsItsMinimumEdgesAndNotItsMaximumOnes) {
    const AppKitRect rect{10, 20, 30, 40};
    EXPECT_TRUE(rect.contains({10, 20}));
    EXPECT_TRUE(rect.contains({39.5, 59.5}));
    EXPECT_FALSE(rect.contains({40, 30}));
    EXPECT_FALSE(rect.contains({20, 60}));
    EXPECT_FALSE(rect.contains({9.5, 30}));
    EXPECT_FALSE(rect.contains({20, 19.5}));
}

TEST(AppKitRect, LiesOnTheOtherSideOfItsOriginWhereASizeIsNegative) {
    const AppKitRect rect{10, 20, -30, -40};
    EXPECT_EQ(rect.minX(), -20);
    EXPECT_EQ(rect.maxX(), 10);
    EXPECT_EQ(rect.minY(), -20);
    EXPECT_EQ(rect.maxY(), 20);
    EXPECT_TRUE(rect.contains({-20, -20}));
    EXPECT_TRUE(rect.contains({9.5, 19.5}));
    EXPECT_FALSE(rect.contains({10, 0}));
    EXPECT_FALSE(rect.contains({0, 20}));
}
