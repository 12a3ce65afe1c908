#include "RestatedZoneRules.h"

#include <TilewrightUI/ZoneEditorGeometry.h>

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <random>

namespace tilewright {
namespace {

using Corner = ZoneEditorGeometry::Corner;
namespace restated = testing::restated;

constexpr int cases = 100'000;
constexpr double eps = ZoneEditorGeometry::defaultEps;
constexpr double slack = 1e-9;

/// Layouts and drags, half of them with edges that coincide, touch within the tolerance or miss it
/// narrowly, since that is where the rules decide.
class Generator {
public:
    explicit Generator(quint64 seed)
        : random_(seed) {}

    double between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    bool coin() { return below(2) == 0; }
    int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random_); }

    Zone insideCanvas() {
        const auto [x, width] = spanInside();
        const auto [y, height] = spanInside();
        return zone(x, y, width, height);
    }
    Zone anywhere() {
        return zone(between(-1, 1.5), between(-1, 1.5), between(-0.2, 1.7), between(-0.2, 1.7));
    }
    Zone minimal(const Zone& from) {
        Zone result = from;
        result.width = std::max(result.width, ZoneEditorGeometry::defaultMinSize);
        result.height = std::max(result.height, ZoneEditorGeometry::defaultMinSize);
        result.x = std::min(result.x, 1 - result.width);
        result.y = std::min(result.y, 1 - result.height);
        return result;
    }
    ZoneEditorGeometry geometry(bool outsideToo = false) {
        ZoneEditorGeometry result;
        result.snapToEdges = coin();
        const int count = below(7);
        for (int index = 0; index < count; ++index)
            result.others.push_back(outsideToo && coin() ? anywhere() : insideCanvas());
        return result;
    }
    /// A zone beside, or nearly beside, one of the neighbours where there are any.
    Zone start(const ZoneEditorGeometry& geometry) {
        Zone result = insideCanvas();
        if (geometry.others.empty() || coin())
            return result;
        const Zone& neighbour =
            geometry.others[static_cast<std::size_t>(below(int(geometry.others.size())))];
        switch (below(4)) {
        case 0:
            result.x = neighbour.x - result.width + jitter();
            break;
        case 1:
            result.x = neighbour.x + neighbour.width + jitter();
            break;
        case 2:
            result.y = neighbour.y - result.height + jitter();
            break;
        default:
            result.y = neighbour.y + neighbour.height + jitter();
            break;
        }
        const bool isInside = result.x >= 0 && result.y >= 0 && result.x + result.width <= 1 &&
                              result.y + result.height <= 1;
        return isInside ? result : insideCanvas();
    }
    double delta() {
        switch (below(4)) {
        case 0:
            return 0;
        case 1:
            return (below(41) - 20) / 20.0;
        case 2:
            return between(-0.05, 0.05);
        default:
            return between(-1.2, 1.2);
        }
    }

private:
    static Zone zone(double x, double y, double width, double height) {
        static const QUuid id = QUuid::createUuid();
        return {id, QStringLiteral("Zone 7"), x, y, width, height};
    }
    double jitter() { return coin() ? 0 : between(-0.001, 0.001); }
    std::pair<double, double> spanInside() {
        if (coin()) {
            const int first = below(20);
            const int last = first + 1 + below(20 - first);
            return {first / 20.0, (last - first) / 20.0};
        }
        const double first = between(0, 0.95);
        return {first, between(0.001, 1 - first)};
    }

    std::mt19937_64 random_;
};

bool isSameBitForBit(const Zone& a, const Zone& b) {
    const auto bits = [](double value) { return std::bit_cast<quint64>(value); };
    return a.id == b.id && a.name == b.name && bits(a.x) == bits(b.x) && bits(a.y) == bits(b.y) &&
           bits(a.width) == bits(b.width) && bits(a.height) == bits(b.height);
}

std::string text(const Zone& zone) {
    return QStringLiteral("{%1, %2, %3, %4}")
        .arg(zone.x, 0, 'g', 17)
        .arg(zone.y, 0, 'g', 17)
        .arg(zone.width, 0, 'g', 17)
        .arg(zone.height, 0, 'g', 17)
        .toStdString();
}

std::string text(const ZoneEditorGeometry& geometry, const Zone& start, double dx, double dy) {
    std::string result = text(start) + " by " + std::to_string(dx) + ", " + std::to_string(dy) +
                         (geometry.snapToEdges ? " snapping" : "") + " among";
    for (const Zone& other : geometry.others)
        result += " " + text(other);
    return result;
}

double sharedColumns(const Zone& a, const Zone& b) {
    return std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
}

double sharedRows(const Zone& a, const Zone& b) {
    return std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
}

bool overlap(const Zone& a, const Zone& b, double tolerance) {
    return sharedColumns(a, b) > tolerance && sharedRows(a, b) > tolerance;
}

/// Whether the neighbour lies where the move goes: beyond the starting edge, on either axis.
bool isAhead(const Zone& start, const Zone& other, double dx, double dy) {
    const bool sharesRows = sharedRows(start, other) > eps;
    const bool right = dx > 0 && other.x + eps >= start.x + start.width;
    const bool left = dx < 0 && other.x + other.width - eps <= start.x;
    const bool below = dy > 0 && other.y + eps >= start.y + start.height;
    const bool above = dy < 0 && other.y + other.height - eps <= start.y;
    return (sharesRows && (left || right)) || below || above;
}

TEST(MovingProperty, KeepsWidthHeightIdAndName) {
    Generator generator(1);
    for (int round = 0; round < cases; ++round) {
        const ZoneEditorGeometry geometry = generator.geometry(true);
        const Zone start = generator.coin() ? generator.anywhere() : generator.start(geometry);
        const Zone result = geometry.moved(start, generator.delta(), generator.delta());
        ASSERT_EQ(result.width, start.width);
        ASSERT_EQ(result.height, start.height);
        ASSERT_EQ(result.id, start.id);
        ASSERT_EQ(result.name, start.name);
    }
}

TEST(MovingProperty, StaysInTheCanvasWithoutNeighbours) {
    Generator generator(2);
    for (int round = 0; round < cases; ++round) {
        ZoneEditorGeometry geometry;
        geometry.snapToEdges = generator.coin();
        const Zone start = generator.insideCanvas();
        const Zone result = geometry.moved(start, generator.delta(), generator.delta());
        ASSERT_GE(result.x, 0) << text(start);
        ASSERT_GE(result.y, 0) << text(start);
        ASSERT_LE(result.x, 1 - start.width + slack) << text(start);
        ASSERT_LE(result.y, 1 - start.height + slack) << text(start);
    }
}

TEST(MovingProperty, NeverComesToOverlapANeighbourAheadThatItDidNotOverlap) {
    Generator generator(3);
    int neighboursAhead = 0;
    for (int round = 0; round < cases; ++round) {
        const ZoneEditorGeometry geometry = generator.geometry();
        const Zone start = generator.start(geometry);
        const double dx = generator.delta();
        const double dy = generator.delta();
        const Zone result = geometry.moved(start, dx, dy);
        for (const Zone& other : geometry.others) {
            if (overlap(start, other, eps) || !isAhead(start, other, dx, dy))
                continue;
            ++neighboursAhead;
            ASSERT_FALSE(overlap(result, other, eps + slack))
                << text(geometry, start, dx, dy) << " gives " << text(result);
        }
    }
    EXPECT_GT(neighboursAhead, cases / 2);
}

TEST(MovingProperty, FollowsItsRulesBitForBitFromAnywhere) {
    Generator generator(4);
    for (int round = 0; round < 2 * cases; ++round) {
        const ZoneEditorGeometry geometry = generator.geometry(true);
        const Zone start = generator.coin() ? generator.anywhere() : generator.start(geometry);
        const double dx = generator.delta();
        const double dy = generator.delta();
        const restated::Rules rules{geometry.others, geometry.snapToEdges};
        const Zone result = geometry.moved(start, dx, dy);
        const Zone expected = restated::moved(rules, start, dx, dy);
        ASSERT_TRUE(isSameBitForBit(result, expected))
            << text(geometry, start, dx, dy) << " gives " << text(result) << " instead of "
            << text(expected);
    }
}

TEST(ResizingProperty, MovesOnlyTheEdgesOfItsCorner) {
    Generator generator(5);
    for (int round = 0; round < cases; ++round) {
        const ZoneEditorGeometry geometry = generator.geometry();
        const Zone start = generator.minimal(generator.start(geometry));
        const Corner corner = ZoneEditorGeometry::allCorners[std::size_t(generator.below(4))];
        const double dx = generator.delta();
        const double dy = generator.delta();
        const Zone result = geometry.resized(start, corner, dx, dy);
        const bool left = corner == Corner::topLeft || corner == Corner::bottomLeft;
        const bool top = corner == Corner::topLeft || corner == Corner::topRight;
        if (left)
            ASSERT_NEAR(result.x + result.width, start.x + start.width, slack) << text(start);
        else
            ASSERT_NEAR(result.x, start.x, slack) << text(start);
        if (top)
            ASSERT_NEAR(result.y + result.height, start.y + start.height, slack) << text(start);
        else
            ASSERT_NEAR(result.y, start.y, slack) << text(start);
    }
}

TEST(ResizingProperty, NeverFallsUnderTheMinimumSize) {
    Generator generator(6);
    int atTheMinimum = 0;
    for (int round = 0; round < cases; ++round) {
        const ZoneEditorGeometry geometry = generator.geometry();
        const Zone start = generator.start(geometry);
        const Corner corner = ZoneEditorGeometry::allCorners[std::size_t(generator.below(4))];
        const Zone result = geometry.resized(start, corner, generator.delta(), generator.delta());
        ASSERT_GE(result.width, geometry.minSize - slack) << text(start);
        ASSERT_GE(result.height, geometry.minSize - slack) << text(start);
        atTheMinimum += result.width < geometry.minSize + slack ? 1 : 0;
    }
    EXPECT_GT(atTheMinimum, cases / 100);
}

TEST(ResizingProperty, FollowsItsRulesBitForBitFromAnywhere) {
    Generator generator(7);
    for (int round = 0; round < 2 * cases; ++round) {
        const ZoneEditorGeometry geometry = generator.geometry(true);
        const Zone start = generator.coin() ? generator.anywhere() : generator.start(geometry);
        const Corner corner = ZoneEditorGeometry::allCorners[std::size_t(generator.below(4))];
        const double dx = generator.delta();
        const double dy = generator.delta();
        const restated::Rules rules{geometry.others, geometry.snapToEdges};
        const Zone result = geometry.resized(start, corner, dx, dy);
        const Zone expected = restated::resized(rules, start, corner, dx, dy);
        ASSERT_TRUE(isSameBitForBit(result, expected))
            << text(geometry, start, dx, dy) << " gives " << text(result) << " instead of "
            << text(expected);
    }
}

} // namespace
} // namespace tilewright
