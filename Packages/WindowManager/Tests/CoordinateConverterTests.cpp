#include <FakePlatform.h>
#include <WindowManager/CoordinateConverter.h>

#include <gtest/gtest.h>

using namespace tilewright;
using tilewright::testing::FakeDesktop;
using tilewright::testing::makeScreen;

TEST(CoordinateConverter, FlipsAboutThePrimaryDisplay) {
    FakeDesktop desktop;
    const auto screen = makeScreen({.frame = {0, 0, 1440, 900}});
    desktop.platform.fakeScreens.setScreens({screen});
    const AppKitRect appKit{100, 600, 400, 200};
    const ZoneRect ax{100, 100, 400, 200};
    EXPECT_EQ(CoordinateConverter::appKitToAX(appKit, *screen), ax);
    EXPECT_EQ(CoordinateConverter::axToAppKit(ax, *screen), appKit);
}

TEST(CoordinateConverter, GivesADisplayAboveThePrimaryNegativeY) {
    FakeDesktop desktop;
    const auto above = makeScreen({.frame = {0, 900, 1920, 1080}});
    desktop.platform.fakeScreens.setScreens({makeScreen({.frame = {0, 0, 1440, 900}}), above});
    EXPECT_EQ(CoordinateConverter::appKitToAX({0, 1000, 400, 200}, *above),
              (ZoneRect{0, -300, 400, 200}));
}

TEST(CoordinateConverter, IgnoresTheDisplayGivenWhileThereIsAPrimaryOne) {
    FakeDesktop desktop;
    const auto primary = makeScreen({.frame = {0, 0, 1440, 900}});
    const auto other = makeScreen({.frame = {1440, -200, 1920, 1080}});
    desktop.platform.fakeScreens.setScreens({primary, other});
    const AppKitRect rect{10, 20, 30, 40};
    EXPECT_EQ(CoordinateConverter::appKitToAX(rect, *primary),
              CoordinateConverter::appKitToAX(rect, *other));
    EXPECT_EQ(CoordinateConverter::axToAppKit({1, 2, 3, 4}, *primary),
              CoordinateConverter::axToAppKit({1, 2, 3, 4}, *other));
}

TEST(CoordinateConverter, UsesTheDisplayGivenWhenTheListIsEmpty) {
    FakeDesktop desktop;
    const auto screen = makeScreen({.frame = {0, 0, 800, 500}});
    EXPECT_EQ(CoordinateConverter::appKitToAX({10, 20, 30, 40}, *screen),
              (ZoneRect{10, 440, 30, 40}));
    EXPECT_EQ(CoordinateConverter::axToAppKit({10, 440, 30, 40}, *screen),
              (AppKitRect{10, 20, 30, 40}));
}

TEST(CoordinateConverter, FlipsAPointAboutThePrimaryDisplayToo) {
    FakeDesktop desktop;
    EXPECT_EQ(CoordinateConverter::appKitToAX(AppKitPoint{10, 20}), (AXPoint{10, -20}));
    desktop.platform.fakeScreens.setScreens(
        {makeScreen({.frame = {0, 0, 1440, 900}}), makeScreen({.frame = {1440, 0, 1920, 1080}})});
    EXPECT_EQ(CoordinateConverter::appKitToAX(AppKitPoint{10, 20.5}), (AXPoint{10, 879.5}));
}

TEST(CoordinateConverter, TakesNegativeSizesByTheirExtentOnTheWayToAccessibilitySpace) {
    FakeDesktop desktop;
    const auto screen = makeScreen({.frame = {0, 0, 1440, 900}});
    desktop.platform.fakeScreens.setScreens({screen});
    EXPECT_EQ(CoordinateConverter::appKitToAX({100, 600, -400, -200}, *screen),
              (ZoneRect{100, 100, 400, 200}));
}

TEST(CoordinateConverter, TakesNegativeSizesAsTheyAreOnTheWayBack) {
    FakeDesktop desktop;
    const auto screen = makeScreen({.frame = {0, 0, 1440, 900}});
    desktop.platform.fakeScreens.setScreens({screen});
    EXPECT_EQ(CoordinateConverter::axToAppKit({100, 100, -400, -200}, *screen),
              (AppKitRect{100, 1000, -400, -200}));
}

TEST(CoordinateConverter, DoesNotRound) {
    FakeDesktop desktop;
    const auto screen = makeScreen({.frame = {0, 0, 1440, 900}});
    desktop.platform.fakeScreens.setScreens({screen});
    EXPECT_EQ(CoordinateConverter::appKitToAX({0.125, 0.25, 0.5, 0.375}, *screen),
              (ZoneRect{0.125, 899.375, 0.5, 0.375}));
}

TEST(CoordinateConverter, AddsPlaceAndHeightBeforeItSubtractsThem) {
    FakeDesktop desktop;
    const auto screen = makeScreen({.frame = {0, 0, 1920, 1080}});
    desktop.platform.fakeScreens.setScreens({screen});
    // 632.0999999999999 in any other order.
    EXPECT_EQ(CoordinateConverter::appKitToAX({0, 41.7, 0, 406.2}, *screen).y, 632.1);
    EXPECT_EQ(CoordinateConverter::axToAppKit({0, 41.7, 0, 406.2}, *screen).y, 632.1);
}
