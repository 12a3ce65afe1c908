// Rules that hold for any values, each over many random cases. The seeds are fixed, so that a
// failure can be repeated.

#include <FakePlatform.h>
#include <WindowManager/CoordinateConverter.h>
#include <WindowManager/LayoutCoding.h>
#include <WindowManager/ZoneHitTesting.h>

#include <array>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace tilewright;
using tilewright::testing::FakeDesktop;
using tilewright::testing::makeScreen;

namespace {

constexpr int caseCount = 20000;

class Random {
public:
    explicit Random(unsigned seed)
        : engine_(seed) {}

    int below(int end) { return std::uniform_int_distribution(0, end - 1)(engine_); }
    double between(double low, double high) {
        return std::uniform_real_distribution(low, high)(engine_);
    }
    /// Any finite double: every bit is random.
    double anyFinite() {
        for (;;) {
            const auto value = std::bit_cast<double>(engine_());
            if (std::isfinite(value))
                return value;
        }
    }
    /// A coordinate from a coarse grid, so that edges and corners are met often.
    double onGrid() { return below(17) / 8.0 - 0.5; }
    QUuid uuid() {
        std::array<quint64, 2> bits{engine_(), engine_()};
        return below(50) == 0
                   ? QUuid()
                   : QUuid::fromRfc4122(QByteArrayView(reinterpret_cast<const char*>(bits.data()),
                                                       static_cast<qsizetype>(sizeof bits)));
    }
    /// A text of any code units, also such as make no character.
    QString text() {
        QString result;
        const int length = below(12);
        for (int i = 0; i < length; ++i) {
            const int range = below(4) == 0 ? 0x10000 : 0x80;
            result.append(QChar(static_cast<char16_t>(below(range))));
        }
        return result;
    }

private:
    std::mt19937_64 engine_;
};

double larger(std::initializer_list<double> values) {
    double result = 0;
    for (const double value : values)
        result = std::max(result, std::abs(value));
    return result;
}

} // namespace

TEST(ZoneModelProperty, ConvertingThereAndBackGivesTheSameRectangleButForRounding) {
    FakeDesktop desktop;
    Random random(1);
    for (int i = 0; i < caseCount; ++i) {
        const double height = random.between(1, 10000);
        const auto screen = makeScreen({.frame = {0, 0, 1000, height}});
        desktop.platform.fakeScreens.setScreens({screen});
        const AppKitRect rect{random.between(-1e5, 1e5), random.between(-1e5, 1e5),
                              random.between(0, 1e5), random.between(0, 1e5)};
        const AppKitRect back = CoordinateConverter::axToAppKit(
            CoordinateConverter::appKitToAX(rect, *screen), *screen);
        const double rounding =
            8 * std::numeric_limits<double>::epsilon() * larger({height, rect.y, rect.height});
        ASSERT_EQ(back.x, rect.x);
        ASSERT_EQ(back.width, rect.width);
        ASSERT_EQ(back.height, rect.height);
        ASSERT_NEAR(back.y, rect.y, rounding);
        const ZoneRect ax{rect.x, rect.y, rect.width, rect.height};
        const ZoneRect axBack =
            CoordinateConverter::appKitToAX(CoordinateConverter::axToAppKit(ax, *screen), *screen);
        ASSERT_NEAR(axBack.y, ax.y, rounding);
    }
}

TEST(ZoneModelProperty, ConvertingWholePointsThereAndBackIsExact) {
    FakeDesktop desktop;
    Random random(2);
    for (int i = 0; i < caseCount; ++i) {
        const auto screen = makeScreen({.frame = {0, 0, 1000, double(1 + random.below(9999))}});
        desktop.platform.fakeScreens.setScreens({screen});
        const AppKitRect rect{double(random.below(20000) - 10000),
                              double(random.below(20000) - 10000), double(random.below(10000)),
                              double(random.below(10000))};
        ASSERT_EQ(CoordinateConverter::axToAppKit(CoordinateConverter::appKitToAX(rect, *screen),
                                                  *screen),
                  rect);
    }
}

TEST(ZoneModelProperty, WritingAndReadingGivesTheSameDocument) {
    Random random(3);
    for (int i = 0; i < caseCount; ++i) {
        LayoutCoding::Persisted persisted;
        const int layouts = random.below(3);
        for (int l = 0; l < layouts; ++l) {
            ZoneLayout layout{
                random.uuid(), random.text(), random.text(), random.below(2) == 1, {}};
            const int zones = random.below(4);
            for (int z = 0; z < zones; ++z)
                layout.zones.push_back({random.uuid(), random.text(), random.anyFinite(),
                                        random.between(0, 1), random.anyFinite(),
                                        double(random.below(3))});
            persisted.customLayouts.push_back(layout);
        }
        const int assignments = random.below(3);
        for (int a = 0; a < assignments; ++a)
            persisted.assignments[random.text()] = random.uuid();
        const auto bytes = LayoutCoding::encode(persisted);
        ASSERT_TRUE(bytes);
        const auto back = LayoutCoding::decodePersisted(*bytes);
        ASSERT_EQ(back, persisted) << bytes->constData();
        ASSERT_EQ(LayoutCoding::encode(*back), bytes);
    }
}

TEST(ZoneModelProperty, WritingAndReadingARectangleGivesTheSame) {
    Random random(4);
    for (int i = 0; i < caseCount; ++i) {
        const ZoneRect rect{random.anyFinite(), random.anyFinite(), random.anyFinite(),
                            random.anyFinite()};
        ASSERT_EQ(LayoutCoding::decodeZoneRect(*LayoutCoding::encode(rect)), rect);
    }
}

TEST(ZoneModelProperty, TheZoneAtAPointIsTheLastThatHoldsIt) {
    Random random(5);
    int found = 0;
    for (int i = 0; i < caseCount; ++i) {
        const bool onGrid = i % 2 == 0;
        const auto number = [&] { return onGrid ? random.onGrid() : random.between(-0.5, 1.5); };
        ZoneLayout layout{QUuid(), {}, {}, false, {}};
        const int zones = random.below(8);
        for (int z = 0; z < zones; ++z)
            layout.zones.push_back(
                {random.uuid(), QString::number(z), number(), number(), number(), number()});
        const NormalizedPoint point{number(), number()};

        std::optional<Zone> expected;
        for (const Zone& zone : layout.zones) {
            const bool isLeft = point.x < zone.x;
            const bool isRight = point.x > zone.x + zone.width;
            const bool isAbove = point.y < zone.y;
            const bool isBelow = point.y > zone.y + zone.height;
            if (!isLeft && !isRight && !isAbove && !isBelow)
                expected = zone;
        }
        ASSERT_EQ(layout.zoneAtNormalized(point), expected);
        found += expected ? 1 : 0;
    }
    EXPECT_GT(found, caseCount / 20);
    EXPECT_LT(found, caseCount);
}

TEST(ZoneModelProperty, ANormalizedPointIsNeverOutsideTheUnitSquare) {
    Random random(6);
    int found = 0;
    for (int i = 0; i < caseCount; ++i) {
        // Ordinary displays, then any numbers at all.
        const bool isOrdinary = i % 4 != 0;
        const auto number = [&](double low, double high) {
            return isOrdinary ? random.between(low, high) : random.anyFinite();
        };
        const auto screen =
            makeScreen({.visibleFrame = AppKitRect{number(-5000, 5000), number(-5000, 5000),
                                                   number(-10, 4000), number(-10, 4000)}});
        const AppKitRect visible = screen->visibleFrame();
        AppKitPoint at{number(-5000, 9000), number(-5000, 9000)};
        if (random.below(2) == 0)
            at = {visible.x + visible.width * random.below(9) / 8,
                  visible.y + visible.height * random.below(9) / 8};
        const auto point = ZoneHitTesting::normalizedPointForMouseLocation(at, *screen);
        if (!point)
            continue;
        ++found;
        ASSERT_GE(point->x, 0);
        ASSERT_LE(point->x, 1);
        ASSERT_GE(point->y, 0);
        ASSERT_LE(point->y, 1);
    }
    EXPECT_GT(found, caseCount / 20);
}

TEST(ZoneModelProperty, APointWithinTheVisibleFrameHasItsPlaceInTheUnitSquare) {
    Random random(7);
    for (int i = 0; i < caseCount; ++i) {
        const AppKitRect visible{random.between(-5000, 5000), random.between(-5000, 5000),
                                 random.between(100, 4000), random.between(100, 4000)};
        const double x = random.between(0.001, 0.999);
        const double y = random.between(0.001, 0.999);
        const auto point = ZoneHitTesting::normalizedPointForMouseLocation(
            {visible.x + x * visible.width, visible.y + (1 - y) * visible.height},
            *makeScreen({.visibleFrame = visible}));
        ASSERT_TRUE(point);
        ASSERT_NEAR(point->x, x, 1e-9);
        ASSERT_NEAR(point->y, y, 1e-9);
    }
}
