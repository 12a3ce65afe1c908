#include <FakePlatform.h>
#include <WindowManager/CoordinateConverter.h>
#include <WindowManager/Zone.h>

#include <array>
#include <bit>
#include <gtest/gtest.h>
#include <limits>

using namespace tilewright;
using tilewright::testing::FakeDesktop;
using tilewright::testing::makeScreen;

namespace {

Zone zoneAt(double x, double y, double width, double height) {
    return {QUuid::createUuid(), QStringLiteral("Zone"), x, y, width, height};
}

} // namespace

TEST(ZoneRect, EqualsFieldByField) {
    const ZoneRect rect{1, 2, 3, 4};
    EXPECT_EQ(rect, (ZoneRect{1, 2, 3, 4}));
    EXPECT_NE(rect, (ZoneRect{0, 2, 3, 4}));
    EXPECT_NE(rect, (ZoneRect{1, 0, 3, 4}));
    EXPECT_NE(rect, (ZoneRect{1, 2, 0, 4}));
    EXPECT_NE(rect, (ZoneRect{1, 2, 3, 0}));
}

TEST(ZoneRect, WithANumberThatIsNoneEqualsNotEvenItself) {
    const ZoneRect rect{std::numeric_limits<double>::quiet_NaN(), 2, 3, 4};
    EXPECT_FALSE(rect == rect); // NOLINT: the point of the test
}

TEST(Zone, EqualsFieldByField) {
    const Zone zone = zoneAt(0.1, 0.2, 0.3, 0.4);
    Zone other = zone;
    EXPECT_EQ(zone, other);
    other.name = QStringLiteral("Other");
    EXPECT_NE(zone, other);
    for (double Zone::*field : {&Zone::x, &Zone::y, &Zone::width, &Zone::height}) {
        other = zone;
        other.*field = 0.9;
        EXPECT_NE(zone, other);
    }
}

TEST(Zone, DiffersFromOneThatOnlyHasAnotherId) {
    const Zone zone = zoneAt(0, 0, 1, 1);
    Zone other = zone;
    other.id = QUuid::createUuid();
    EXPECT_NE(zone, other);
}

TEST(Zone, AcceptsAnyNumbers) {
    const Zone zone = zoneAt(-3, 1.7, 0, -2);
    EXPECT_EQ(zone.x, -3);
    EXPECT_EQ(zone.y, 1.7);
    EXPECT_EQ(zone.width, 0);
    EXPECT_EQ(zone.height, -2);
}

TEST(Zone, FillsTheRightHalfOfAVisibleFrame) {
    FakeDesktop desktop;
    const auto screen =
        makeScreen({.frame = {0, 0, 1440, 900}, .visibleFrame = AppKitRect{0, 0, 1440, 875}});
    desktop.platform.fakeScreens.setScreens({screen});
    const ZoneRect rect = zoneAt(0.5, 0, 0.5, 1).axRect(*screen);
    EXPECT_EQ(rect, (ZoneRect{720, 25, 720, 875}));
    EXPECT_EQ(CoordinateConverter::axToAppKit(rect, *screen), (AppKitRect{720, 0, 720, 875}));
}

TEST(Zone, AtTheTopWithHalfTheHeightIsTheUpperHalf) {
    FakeDesktop desktop;
    const auto screen =
        makeScreen({.frame = {0, 0, 1440, 900}, .visibleFrame = AppKitRect{0, 70, 1440, 800}});
    desktop.platform.fakeScreens.setScreens({screen});
    const ZoneRect rect = zoneAt(0, 0, 1, 0.5).axRect(*screen);
    EXPECT_EQ(CoordinateConverter::axToAppKit(rect, *screen), (AppKitRect{0, 470, 1440, 400}));
}

TEST(Zone, IsPlacedWithinTheVisibleFrameOfASecondDisplay) {
    FakeDesktop desktop;
    const auto second = makeScreen(
        {.frame = {1440, -200, 1920, 1080}, .visibleFrame = AppKitRect{1440, -200, 1920, 1040}});
    desktop.platform.fakeScreens.setScreens({makeScreen(), second});
    EXPECT_EQ(zoneAt(0.25, 0.5, 0.5, 0.5).axRect(*second),
              (ZoneRect{1440 + 480, 900 - (-200 + 520), 960, 520}));
}

TEST(Zone, IsNeitherRoundedNorClipped) {
    FakeDesktop desktop;
    const auto screen = makeScreen({.frame = {0, 0, 1366, 768}});
    desktop.platform.fakeScreens.setScreens({screen});
    const double third = 0.3333333333333333;
    EXPECT_EQ(zoneAt(third, 0, third, 1).axRect(*screen),
              (ZoneRect{third * 1366, 0, third * 1366, 768}));
    EXPECT_EQ(zoneAt(-1, -1, 3, 2).axRect(*screen), (ZoneRect{-1366, -768, 3 * 1366.0, 1536}));
}

// In the last bit these numbers tell the order of the additions, and a product that is rounded from
// one that is fused into the sum behind it.
TEST(Zone, IsComputedStepByStepToTheLastBitOnEveryProcessor) {
    FakeDesktop desktop;
    const auto second = makeScreen(
        {.frame = {-1280, 300, 1280, 800}, .visibleFrame = AppKitRect{-1280, 325, 1280, 755}});
    desktop.platform.fakeScreens.setScreens({makeScreen({.frame = {0, 0, 1920, 1080}}), second});
    EXPECT_EQ(zoneAt(0.29, 0.43, 0.71, 0.46).axRect(*second),
              (ZoneRect{-908.8, 324.6500000000001, 908.8, 347.3}));
}

// Each of these differs in the last bits of its left or upper edge where a product is fused into
// the sum behind it. Computed by rounding each step by itself.
TEST(Zone, HasPinnedBitsWhereFusedProductsWouldHaveOthers) {
    struct Vector {
        AppKitRect frame;
        AppKitRect visible;
        ZoneRect zone;
        ZoneRect expected;
    };
    const AppKitRect left{-1366, 312, 1366, 768};
    const AppKitRect leftVisible{-1366, 312, 1366, 741};
    const AppKitRect right{1920, -360, 2560, 1440};
    const AppKitRect rightVisible{1983, -360, 2497, 1413};
    const AppKitRect scaled{1920, 0, 1536.8, 864.45};
    const AppKitRect scaledVisible{1920, 0, 1536.8, 837.2};
    const std::array vectors{
        Vector{left,
               leftVisible,
               {0.1, 0.1, 0.7, 0.3},
               {-0x1.335999999999ap+10, 0x1.9466666666670p+6, 0x1.de19999999999p+9,
                0x1.bc99999999999p+7}},
        Vector{left,
               leftVisible,
               {0.25, 0.45, 0.35, 0.2},
               {-0x1.002p+10, 0x1.6873333333334p+8, 0x1.de19999999999p+8, 0x1.2866666666667p+7}},
        Vector{right,
               rightVisible,
               {1.0 / 3, 0, 1.0 / 3, 1},
               {0x1.5feaaaaaaaaaap+11, 0x1.bp+4, 0x1.a02aaaaaaaaaap+9, 0x1.614p+10}},
        Vector{right,
               rightVisible,
               {0.7, 0.3, 0.3, 0.65},
               {0x1.d25ccccccccccp+11, 0x1.c2e6666666664p+8, 0x1.768cccccccccdp+9,
                0x1.cb3999999999ap+9}},
        Vector{scaled,
               scaledVisible,
               {0.7, 0.3, 0.3, 0.65},
               {0x1.767851eb851ecp+11, 0x1.edf5c28f5c28ep+8, 0x1.cd0a3d70a3d70p+8,
                0x1.10170a3d70a3ep+9}},
    };
    const auto bits = [](const ZoneRect& rect) {
        return std::array{std::bit_cast<quint64>(rect.x), std::bit_cast<quint64>(rect.y),
                          std::bit_cast<quint64>(rect.width), std::bit_cast<quint64>(rect.height)};
    };
    for (const Vector& vector : vectors) {
        FakeDesktop desktop;
        const auto screen = makeScreen({.frame = vector.frame, .visibleFrame = vector.visible});
        desktop.platform.fakeScreens.setScreens(
            {makeScreen({.frame = {0, 0, 1920, 1080}}), screen});
        const ZoneRect& zone = vector.zone;
        const ZoneRect found = zoneAt(zone.x, zone.y, zone.width, zone.height).axRect(*screen);
        EXPECT_EQ(bits(found), bits(vector.expected)) << "the zone at " << zone.x << ", " << zone.y
                                                      << " of the display at " << vector.frame.x;
    }
}
