#include <X11/X11Coordinates.h>
#include <X11/X11WindowFacts.h>

#include <gtest/gtest.h>
#include <limits>

using namespace tilewright;

TEST(X11Coordinates, AnchorsBothSpacesToThePrimaryMonitor) {
    // The primary monitor is at the right; another, higher one at its left.
    const X11Coordinates coordinates(QRect(1920, 180, 1280, 900));
    EXPECT_EQ(coordinates.toAppKit(QRect(1920, 180, 1280, 900)), (AppKitRect{0, 0, 1280, 900}));
    EXPECT_EQ(coordinates.toAppKit(QRect(0, 0, 1920, 1080)), (AppKitRect{-1920, 0, 1920, 1080}));
    EXPECT_EQ(coordinates.toPixel({0, 0}), QPoint(1920, 180));
    EXPECT_EQ(coordinates.toAX(QPoint(0, 0)), (AXPoint{-1920, -180}));
}

TEST(X11Coordinates, KeepsThePointerInsideItsDisplayInTheTopRowAndTheLastColumn) {
    const X11Coordinates coordinates(QRect(0, 0, 1920, 1080));
    const AppKitRect frame = coordinates.toAppKit(QRect(0, 0, 1920, 1080));
    EXPECT_EQ(coordinates.toAppKit(QPoint(0, 0)), (AppKitPoint{0.5, 1079.5}));
    EXPECT_EQ(coordinates.toAppKit(NativePixel{1919, 0}), (AppKitPoint{1919.5, 1079.5}));
    for (const QPoint corner : {QPoint(0, 0), QPoint(1919, 0), QPoint(0, 1079), QPoint(1919, 1079)})
        EXPECT_TRUE(frame.contains(coordinates.toAppKit(corner)));
    EXPECT_FALSE(frame.contains(coordinates.toAppKit(QPoint(1920, 0))));
}

TEST(X11Coordinates, FindsThePixelUnderThePointersPlaceAgain) {
    const X11Coordinates coordinates(QRect(100, 50, 1920, 1080));
    for (const QPoint pixel : {QPoint(100, 50), QPoint(2019, 1129), QPoint(7, 3)}) {
        const AppKitPoint place = coordinates.toAppKit(pixel);
        EXPECT_EQ(coordinates.toPixel({place.x, 1080 - place.y}), pixel);
    }
}

TEST(X11Coordinates, RoundsEdgesSoThatThirdsOfAnOddWidthLeaveNoGap) {
    const X11Coordinates coordinates(QRect(0, 0, 1366, 768));
    const double third = 1366.0 / 3;
    const QRect a = coordinates.toPixels({0, 0}, {third, 768});
    const QRect b = coordinates.toPixels({third, 0}, {third, 768});
    const QRect c = coordinates.toPixels({2 * third, 0}, {third, 768});
    EXPECT_EQ(a.x() + a.width(), b.x());
    EXPECT_EQ(b.x() + b.width(), c.x());
    EXPECT_EQ(c.x() + c.width(), 1366);
}

TEST(X11Coordinates, CutsWhatNoScreenHolds) {
    const X11Coordinates coordinates(QRect(0, 0, 100, 100));
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(coordinates.toPixel({infinite, -infinite}), QPoint(32767, -32767));
    EXPECT_EQ(coordinates.toPixel({std::nan(""), 0}), QPoint(-32767, 0));
    EXPECT_EQ(coordinates.toPixels({0, std::nan("")}, {10, 10}), QRect(0, -32767, 10, 0));
}

TEST(X11SizeLimits, RoundIncrementsDownFromTheBase) {
    X11SizeLimits limits;
    limits.minimum = {10, 17};
    limits.base = {4, 4};
    limits.increment = {6, 13};
    EXPECT_EQ(limits.constrained({681, 724}), QSize(4 + 112 * 6, 4 + 55 * 13));
    EXPECT_EQ(limits.constrained({1, 1}), QSize(10, 17));
}

TEST(X11SizeLimits, HoldASizeBetweenMinimumAndMaximum) {
    X11SizeLimits limits;
    limits.minimum = limits.maximum = limits.base = {420, 260};
    EXPECT_EQ(limits.constrained({1000, 1000}), QSize(420, 260));
    EXPECT_EQ(limits.constrained({10, 10}), QSize(420, 260));
}

namespace {

/// A client's hints: flags, four words that nobody reads any more, the sizes.
std::vector<std::uint32_t> hints(std::uint32_t flags, QSize minimum, QSize maximum, QSize base) {
    const auto word = [](int value) { return static_cast<std::uint32_t>(value); };
    std::vector<std::uint32_t> items(18);
    items[0] = flags;
    items[5] = word(minimum.width());
    items[6] = word(minimum.height());
    items[7] = word(maximum.width());
    items[8] = word(maximum.height());
    items[15] = word(base.width());
    items[16] = word(base.height());
    return items;
}

constexpr std::uint32_t minimumHint = 1U << 4U;
constexpr std::uint32_t maximumHint = 1U << 5U;
constexpr std::uint32_t baseHint = 1U << 8U;

} // namespace

TEST(X11SizeLimits, TakeTheBaseForAMissingMinimumAndTheOtherWayRound) {
    const auto based = X11SizeLimits::fromHints(hints(baseHint, {}, {}, {200, 100}));
    EXPECT_EQ(based.minimum, QSize(200, 100));
    const auto least = X11SizeLimits::fromHints(hints(minimumHint, {30, 20}, {}, {}));
    EXPECT_EQ(least.base, QSize(30, 20));
    EXPECT_EQ(least.minimum, QSize(30, 20));
}

TEST(X11SizeLimits, NeverHaveAMaximumBelowTheMinimum) {
    for (const std::uint32_t flags :
         {maximumHint, maximumHint | baseHint, maximumHint | minimumHint,
          maximumHint | minimumHint | baseHint}) {
        const auto limits =
            X11SizeLimits::fromHints(hints(flags, {300, 0}, {100, 0}, {200, 4'000'000}));
        EXPECT_GE(limits.minimum.width(), 1);
        EXPECT_GE(limits.minimum.height(), 1);
        EXPECT_GE(limits.maximum.width(), limits.minimum.width()) << flags;
        EXPECT_GE(limits.maximum.height(), limits.minimum.height()) << flags;
        EXPECT_GE(limits.constrained({250, 250}).width(), 1);
    }
}

TEST(X11SizeLimits, AreNoneWhereTheHintsAreCutShort) {
    auto cut = hints(minimumHint | maximumHint | baseHint, {300, 300}, {400, 400}, {1, 1});
    cut.resize(10);
    EXPECT_EQ(X11SizeLimits::fromHints(cut), X11SizeLimits());
    EXPECT_EQ(X11SizeLimits::fromHints({}), X11SizeLimits());
}

TEST(X11Gravity, IsTheUpperLeftCornerUnlessTheHintsNameAnother) {
    constexpr std::uint32_t gravityHint = 1U << 9U;
    auto items = hints(gravityHint, {}, {}, {});
    EXPECT_EQ(gravityFromHints(items), XCB_GRAVITY_NORTH_WEST) << "none that is known";
    items[17] = XCB_GRAVITY_SOUTH_EAST;
    EXPECT_EQ(gravityFromHints(items), XCB_GRAVITY_SOUTH_EAST);
    items[17] = 4'000'000;
    EXPECT_EQ(gravityFromHints(items), XCB_GRAVITY_NORTH_WEST);
    items[17] = XCB_GRAVITY_STATIC;
    EXPECT_EQ(gravityFromHints(items), XCB_GRAVITY_STATIC);
    items[0] = 0;
    EXPECT_EQ(gravityFromHints(items), XCB_GRAVITY_NORTH_WEST) << "not told";
    items[0] = gravityHint;
    items.resize(17);
    EXPECT_EQ(gravityFromHints(items), XCB_GRAVITY_NORTH_WEST) << "cut short";
}

TEST(X11WindowFacts, CountDecorationsInAndShadowsOut) {
    X11WindowFacts facts;
    facts.client = QRect(100, 100, 500, 300);
    facts.decorations = {1, 1, 20, 4};
    EXPECT_EQ(facts.outerFrame(), QRect(99, 80, 502, 324));
    EXPECT_EQ(facts.clientSize({502, 324}), QSize(500, 300));
    facts.decorations = {};
    facts.shadow = {26, 26, 23, 29};
    EXPECT_EQ(facts.outerFrame(), QRect(126, 123, 448, 248));
    EXPECT_EQ(facts.clientSize({448, 248}), QSize(500, 300));
}
