#include <TilewrightUI/FreeSlot.h>

#include <bit>
#include <gtest/gtest.h>
#include <random>

namespace tilewright {
namespace {

/// The scan's eleventh position: ten additions of 0.05 end just below one half.
constexpr double tenSteps = 0.49999999999999994;

Zone at(double x, double y, double width, double height) {
    return {QUuid::createUuid(), QStringLiteral("Taken"), x, y, width, height};
}

void expectSlot(const std::optional<Zone>& slot, double x, double y, double width, double height) {
    ASSERT_TRUE(slot.has_value());
    // Exact: the positions are part of what is promised, down to the last digit.
    EXPECT_EQ(slot->x, x);
    EXPECT_EQ(slot->y, y);
    EXPECT_EQ(slot->width, width);
    EXPECT_EQ(slot->height, height);
}

TEST(FreeSlot, IsTheLeftHalfOfAnEmptyCanvas) {
    // The first size at the first position: nothing rejects it.
    expectSlot(freeSlot({}), 0, 0, 0.5, 1.0);
}

TEST(FreeSlot, GivesAZoneWithAFreshIdAndNoName) {
    const auto first = freeSlot({});
    const auto second = freeSlot({});
    ASSERT_TRUE(first && second);
    EXPECT_FALSE(first->id.isNull());
    EXPECT_NE(first->id, second->id);
    EXPECT_TRUE(first->name.isEmpty());
}

TEST(FreeSlot, IsTheRightHalfAtTheEleventhPositionOnceTheLeftHalfIsTaken) {
    // 0.5 x 1 has one row. A position is rejected while x < 0.5 - 0.0005; 0.45 still is, the next
    // one, ten additions of 0.05, is not.
    expectSlot(freeSlot({at(0, 0, 0.5, 1)}), tenSteps, 0, 0.5, 1.0);
}

TEST(FreeSlot, IsTheLeftHalfWhereOnlyTheRightHalfIsTaken) {
    // At x = 0 the zone begins at 0.5 + 0.0005, which is not below 0 + 0.5: they touch only.
    expectSlot(freeSlot({at(0.5, 0, 0.5, 1)}), 0, 0, 0.5, 1.0);
}

TEST(FreeSlot, GoesBelowAZoneThatTakesTheTopHalf) {
    // Any full-height position meets the zone. 0.5 x 0.5 is rejected in every row with y < 0.4995;
    // the eleventh row is free from its first column on.
    expectSlot(freeSlot({at(0, 0, 1, 0.5)}), 0, tenSteps, 0.5, 0.5);
}

TEST(FreeSlot, FindsTheFourthQuadrant) {
    // 0.5 x 1 meets a taken quadrant everywhere. 0.5 x 0.5: rows above 0.4995 meet the upper two;
    // in the eleventh row the lower left one rejects x < 0.4995, so the eleventh column is the
    // first.
    expectSlot(freeSlot({at(0, 0, 0.5, 0.5), at(0.5, 0, 0.5, 0.5), at(0, 0.5, 0.5, 0.5)}), tenSteps,
               tenSteps, 0.5, 0.5);
}

TEST(FreeSlot, FallsBackToAQuarterBesideAZoneInTheMiddle) {
    // The zone spans 0.25 to 0.75 both ways. Sizes one and two are 0.5 wide: every x from 0 to 0.5
    // meets it (0.2505 < x + 0.5). Sizes three and four are 1/3 wide: every x up to 0.65 meets it
    // (0.2505 < x + 1/3), and every row does. 0.25 x 0.5 at x = 0 ends at 0.25: free at once.
    expectSlot(freeSlot({at(0.25, 0.25, 0.5, 0.5)}), 0, 0, 0.25, 0.5);
}

TEST(FreeSlot, DoesNotFindTheMissingThirdSinceTheGridPassesItBy) {
    // Free columns run from 1/3 to 2/3. Half-width places do not fit. A third would have to begin
    // between 0.33283 and 0.33383: the scan visits 0.3 and 0.35. A quarter may begin between
    // 0.33283 and 0.41717: 0.35 is the first such position.
    expectSlot(freeSlot({at(0, 0, 1.0 / 3, 1), at(2.0 / 3, 0, 1.0 / 3, 1)}), 0.35, 0, 0.25, 0.5);
}

TEST(FreeSlot, LeavesAGapWhereAZoneEndsBetweenTwoPositions) {
    // x = 0 is below 0.03 - 0.0005 and rejected, 0.05 is past it.
    expectSlot(freeSlot({at(0, 0, 0.03, 1)}), 0.05, 0, 0.5, 1.0);
}

TEST(FreeSlot, ToleratesAnOverlapWithinTheTolerance) {
    // The zone reaches 0.0004 beyond the middle: the eleventh position is not below 0.4999.
    expectSlot(freeSlot({at(0, 0, 0.5004, 1)}), tenSteps, 0, 0.5, 1.0);
}

TEST(FreeSlot, GivesWayToAnOverlapBeyondTheTolerance) {
    // The zone reaches 0.0006 beyond the middle: the eleventh position is below 0.5001, and half a
    // canvas fits nowhere later. A third of full height may begin from 0.5001 on: eleven additions.
    expectSlot(freeSlot({at(0, 0, 0.5006, 1)}), 0.5499999999999999, 0, 1.0 / 3, 1.0);
}

TEST(FreeSlot, FindsTheFirstFreeCellOfACheckerboard) {
    // Of 4 x 4 cells every second is taken, the top left one first. Whatever is wider or higher
    // than a cell meets two cells side by side, one of which is taken. A cell-sized place is
    // rejected by the first cell while x < 0.2495; at 0.25 it lies exactly on the second, free
    // cell.
    std::vector<Zone> zones;
    for (int row = 0; row < 4; ++row) {
        for (int column = row % 2; column < 4; column += 2)
            zones.push_back(at(column * 0.25, row * 0.25, 0.25, 0.25));
    }
    expectSlot(freeSlot(zones), 0.25, 0, 0.25, 0.25);
}

TEST(FreeSlot, PullsTheLastColumnBackInside) {
    // Only the last quarter is free. 0.25 x 0.5 may begin from 0.7495 on: fifteen additions give
    // 0.7500000000000001, which the right edge pulls back to 0.75.
    expectSlot(freeSlot({at(0, 0, 0.75, 1)}), 0.75, 0, 0.25, 0.5);
}

TEST(FreeSlot, PullsTheLastRowAndColumnBackInside) {
    // Only the bottom right corner of 0.05 x 0.05 is free; nineteen additions overshoot 0.95 by
    // 3e-16, well within the limit, on both axes.
    expectSlot(freeSlot({at(0, 0, 1, 0.95), at(0, 0.95, 0.95, 0.05)}), 1 - 0.05, 1 - 0.05, 0.05,
               0.05);
}

TEST(FreeSlot, UsesASlitThatHoldsAPosition) {
    // Free columns run from 0.7 to 0.76: only the smallest size fits, at fourteen additions.
    expectSlot(freeSlot({at(0, 0, 0.7, 1), at(0.76, 0, 0.24, 1)}), 0.7000000000000001, 0, 0.05,
               0.05);
}

TEST(FreeSlot, MissesASlitBetweenTwoPositions) {
    // Free columns run from 0.71 to 0.77: wide enough, but 0.7 begins too early and 0.75 ends at
    // 0.8.
    EXPECT_FALSE(freeSlot({at(0, 0, 0.71, 1), at(0.77, 0, 0.23, 1)}).has_value());
}

TEST(FreeSlot, IsNoneOnAFullCanvas) {
    // The bento box leaves nothing free: all seven sizes fail everywhere.
    EXPECT_FALSE(freeSlot({at(0, 0, 0.62, 1), at(0.62, 0, 0.38, 0.55), at(0.62, 0.55, 0.19, 0.45),
                           at(0.81, 0.55, 0.19, 0.45)})
                     .has_value());
    EXPECT_FALSE(freeSlot({at(0, 0, 1, 1)}).has_value());
}

TEST(FreeSlot, IgnoresZonesOutsideTheCanvas) {
    expectSlot(freeSlot({at(-2, 0, 1, 1), at(1.2, 0, 1, 1)}), 0, 0, 0.5, 1.0);
}

TEST(FreeSlot, TriesTheSmallestSizeItIsGivenLast) {
    // Free columns run from 0.9 on: no regular size fits; a smallest size of 0.1 does at 18 steps.
    expectSlot(freeSlot({at(0, 0, 0.9, 1)}, 0.1), 0.9, 0, 0.1, 0.1);
    EXPECT_FALSE(freeSlot({at(0, 0, 0.9, 1)}, 0.2).has_value());
}

/// The rules once more, with flags and whiles, to compare with.
std::optional<Zone> restated(const std::vector<Zone>& zones) {
    const double widths[] = {0.5, 0.5, 1.0 / 3, 1.0 / 3, 0.25, 0.25, 0.05};
    const double heights[] = {1.0, 0.5, 1.0, 0.5, 0.5, 0.25, 0.05};
    for (int size = 0; size < 7; ++size) {
        const double w = widths[size];
        const double h = heights[size];
        double y = 0;
        while (!(y + h > 1.0005)) {
            double x = 0;
            while (!(x + w > 1.0005)) {
                bool isFree = true;
                for (const Zone& z : zones) {
                    const bool apart = x >= z.x + z.width - 0.0005 || z.x + 0.0005 >= x + w ||
                                       y >= z.y + z.height - 0.0005 || z.y + 0.0005 >= y + h;
                    if (!apart)
                        isFree = false;
                }
                if (isFree)
                    return at(x < 1 - w ? x : 1 - w, y < 1 - h ? y : 1 - h, w, h);
                x = x + 0.05;
            }
            y = y + 0.05;
        }
    }
    return std::nullopt;
}

bool overlapsByMoreThan(double tolerance, const Zone& a, const Zone& b) {
    const double columns = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const double rows = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    return columns > tolerance && rows > tolerance;
}

TEST(FreeSlot, NeverOverlapsNorLeavesTheCanvasAndFollowsItsRulesOnAHundredThousandCanvases) {
    std::mt19937_64 random(20260301);
    std::uniform_real_distribution<double> fraction(0, 1);
    std::uniform_int_distribution<int> twentieths(0, 20);
    std::uniform_int_distribution<std::size_t> counts(0, 14);
    int found = 0;
    int full = 0;
    for (int round = 0; round < 100'000; ++round) {
        // Both loose zones and such whose edges lie on the scan's own positions or just beside
        // them.
        const bool onGrid = round % 2 == 0;
        // Crowded canvases in every third round: zones that begin further out and are larger.
        const bool isCrowded = round % 3 == 0;
        const double size = isCrowded ? 1.2 : 0.6;
        const double origin = isCrowded ? -0.35 : 0;
        std::vector<Zone> zones;
        const std::size_t count = counts(random);
        for (std::size_t index = 0; index < count; ++index) {
            const auto coordinate = [&] {
                if (!onGrid)
                    return fraction(random);
                const double jitter = (fraction(random) - 0.5) * 0.002;
                return twentieths(random) / 20.0 + (round % 4 == 0 ? 0 : jitter);
            };
            zones.push_back(at(coordinate() + origin, coordinate() + origin,
                               coordinate() * size + 0.05, coordinate() * size + 0.05));
        }
        const auto slot = freeSlot(zones);
        const auto expected = restated(zones);
        ASSERT_EQ(slot.has_value(), expected.has_value()) << "round " << round;
        ++(slot ? found : full);
        if (!slot)
            continue;
        for (const double Zone::*field : {&Zone::x, &Zone::y, &Zone::width, &Zone::height}) {
            ASSERT_EQ(std::bit_cast<quint64>((*slot).*field),
                      std::bit_cast<quint64>((*expected).*field))
                << "round " << round;
        }
        ASSERT_TRUE(slot->x >= 0 && slot->y >= 0) << "round " << round;
        ASSERT_TRUE(slot->x + slot->width <= 1 && slot->y + slot->height <= 1) << "round " << round;
        for (const Zone& zone : zones)
            ASSERT_FALSE(overlapsByMoreThan(0.0005 + 1e-9, *slot, zone)) << "round " << round;
    }
    // Both outcomes have to have been met for the comparison to mean anything.
    EXPECT_GT(found, 1000);
    EXPECT_GT(full, 1000);
}

} // namespace
} // namespace tilewright
