#include <FakeScreens.h>
#include <WindowManager/ZoneHitTesting.h>

#include <cmath>
#include <gtest/gtest.h>

using namespace tilewright;
using tilewright::testing::makeScreen;

namespace {

std::optional<NormalizedPoint> normalized(AppKitPoint at, const AppKitRect& visibleFrame) {
    return ZoneHitTesting::normalizedPointForMouseLocation(
        at, *makeScreen({.visibleFrame = visibleFrame}));
}

constexpr AppKitRect plain{0, 0, 1440, 875};

} // namespace

TEST(ZoneHitTesting, MeasuresFromTheTopLeftOfTheVisibleFrame) {
    EXPECT_EQ(normalized({720, 875}, plain), (NormalizedPoint{0.5, 0}));
    EXPECT_EQ(normalized({720, 0}, plain), (NormalizedPoint{0.5, 1}));
    EXPECT_EQ(normalized({0, 437.5}, plain), (NormalizedPoint{0, 0.5}));
    EXPECT_EQ(normalized({1440, 437.5}, plain), (NormalizedPoint{1, 0.5}));
}

TEST(ZoneHitTesting, KnowsNoPointOutsideTheVisibleFrame) {
    EXPECT_EQ(normalized({1441, 400}, plain), std::nullopt);
    EXPECT_EQ(normalized({-0.5, 400}, plain), std::nullopt);
    EXPECT_EQ(normalized({700, 876}, plain), std::nullopt);
    EXPECT_EQ(normalized({700, -1}, plain), std::nullopt);
}

TEST(ZoneHitTesting, KnowsNoPointOverAPanel) {
    const auto screen =
        makeScreen({.frame = {0, 0, 1440, 900}, .visibleFrame = AppKitRect{0, 0, 1440, 875}});
    EXPECT_EQ(ZoneHitTesting::normalizedPointForMouseLocation({700, 890}, *screen), std::nullopt);
}

TEST(ZoneHitTesting, KnowsNoPointOfAnEmptyVisibleFrame) {
    for (const AppKitPoint at : {AppKitPoint{0, 0}, AppKitPoint{5, 5}, AppKitPoint{0, 875}}) {
        EXPECT_EQ(normalized(at, {0, 0, 0, 875}), std::nullopt);
        EXPECT_EQ(normalized(at, {0, 0, 1440, 0}), std::nullopt);
        EXPECT_EQ(normalized(at, {1440, 0, -1440, 875}), std::nullopt);
        EXPECT_EQ(normalized(at, {0, 875, 1440, -875}), std::nullopt);
    }
}

TEST(ZoneHitTesting, FollowsADisplayThatIsNotAtTheOrigin) {
    EXPECT_EQ(normalized({2400, 340}, {1440, -200, 1920, 1080}), (NormalizedPoint{0.5, 0.5}));
}

TEST(ZoneHitTesting, KnowsNoPointThatIsNoNumber) {
    EXPECT_EQ(normalized({std::nan(""), 400}, plain), std::nullopt);
    EXPECT_EQ(normalized({700, std::nan("")}, plain), std::nullopt);
    EXPECT_EQ(normalized({700, 400}, {0, 0, std::nan(""), 875}), std::nullopt);
    EXPECT_EQ(normalized({700, 400}, {0, 0, 1440, std::nan("")}), std::nullopt);
    EXPECT_EQ(normalized({INFINITY, 400}, plain), std::nullopt);
    EXPECT_EQ(normalized({700, -INFINITY}, plain), std::nullopt);
}
