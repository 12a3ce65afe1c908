#include <TilewrightUI/ZoneEditorGeometry.h>

#include <gtest/gtest.h>

namespace tilewright {
namespace {

using Corner = ZoneEditorGeometry::Corner;
constexpr double tiny = 1e-12;

Zone at(double x, double y, double width, double height) {
    return {QUuid::createUuid(), QStringLiteral("Zone 1"), x, y, width, height};
}

ZoneEditorGeometry among(std::vector<Zone> others, bool snapToEdges = true) {
    ZoneEditorGeometry geometry;
    geometry.others = std::move(others);
    geometry.snapToEdges = snapToEdges;
    return geometry;
}

void expectPlace(const Zone& zone, double x, double y, double width, double height) {
    EXPECT_NEAR(zone.x, x, tiny);
    EXPECT_NEAR(zone.y, y, tiny);
    EXPECT_NEAR(zone.width, width, tiny);
    EXPECT_NEAR(zone.height, height, tiny);
}

TEST(ZoneEditorGeometry, HasTheConstantsOfTheEditor) {
    const ZoneEditorGeometry geometry;
    EXPECT_EQ(geometry.minSize, 0.05);
    EXPECT_EQ(geometry.snapThreshold, 0.025);
    EXPECT_EQ(geometry.eps, 0.0005);
}

TEST(ZoneEditorGeometry, ListsTheCornersFromTopLeftToBottomRight) {
    const std::array expected{Corner::topLeft, Corner::topRight, Corner::bottomLeft,
                              Corner::bottomRight};
    EXPECT_EQ(ZoneEditorGeometry::allCorners, expected);
}

TEST(ZoneEditorGeometry, ListsTheCanvasEdgesThenEachNeighboursEdgesKeepingDuplicates) {
    const auto geometry = among({at(0.25, 0.5, 0.5, 0.25), at(0.75, 0.0, 0.25, 0.5)});
    EXPECT_EQ(geometry.verticalLines(), (std::vector{0.0, 1.0, 0.25, 0.75, 0.75, 1.0}));
    EXPECT_EQ(geometry.horizontalLines(), (std::vector{0.0, 1.0, 0.5, 0.75, 0.0, 0.5}));
}

TEST(SnapEdge, ReturnsTheValueWhenSnappingIsOffOrNoLineIsGiven) {
    EXPECT_EQ(among({}, false).snapEdge(0.01, 0.2, {0.0}), 0.01);
    EXPECT_EQ(among({}).snapEdge(0.01, 0.2, {}), 0.01);
}

TEST(SnapEdge, DrawsTheLeadingOrTheTrailingEdgeToALine) {
    EXPECT_EQ(among({}).snapEdge(0.49, 0.25, {0.5}), 0.5);
    EXPECT_EQ(among({}).snapEdge(0.26, 0.25, {0.5}), 0.25);
}

TEST(SnapEdge, LeavesALineExactlyAtTheThresholdAlone) {
    // 0.525 - 0.5 is below the threshold in binary, 1 - 0.975 above; these are exact.
    ZoneEditorGeometry geometry = among({});
    geometry.snapThreshold = 0.03125;
    EXPECT_EQ(geometry.snapEdge(0.53125, 0.125, {0.5}), 0.53125);
    EXPECT_EQ(geometry.snapEdge(0.5312, 0.125, {0.5}), 0.5);
}

TEST(SnapEdge, PrefersTheNearestLine) {
    EXPECT_EQ(among({}).snapEdge(0.5, 0.3, {0.48, 0.51, 0.52}), 0.51);
}

TEST(SnapEdge, LetsTheFirstOfEquallyNearLinesWin) {
    EXPECT_EQ(among({}).snapEdge(0.5, 0.25, {0.515625, 0.484375}), 0.515625);
    EXPECT_EQ(among({}).snapEdge(0.5, 0.25, {0.484375, 0.515625}), 0.484375);
    // Also where the first one attracts the trailing edge.
    EXPECT_EQ(among({}).snapEdge(0.5, 0.25, {0.765625, 0.484375}), 0.515625);
}

TEST(SnapEdge, LetsTheLeadingEdgeWinATieForOneLine) {
    // The segment 0.484375 … 0.515625 has the line exactly in its middle.
    EXPECT_EQ(among({}).snapEdge(0.484375, 0.03125, {0.5}), 0.5);
}

TEST(SnapEdge, MeasuresEveryLineFromTheUnsnappedPosition) {
    // After 0.52 has won, 0.505 is compared with the distance from 0.5, not from 0.52.
    EXPECT_EQ(among({}).snapEdge(0.5, 0.3, {0.52, 0.505}), 0.505);
}

TEST(Moving, StopsAtTheCanvasEdgeEvenWithSnappingOff) {
    for (const bool snaps : {false, true}) {
        expectPlace(among({}, snaps).moved(at(0, 0, 0.5, 1), 0.6, 0), 0.5, 0, 0.5, 1);
        expectPlace(among({}, snaps).moved(at(0.5, 0, 0.5, 1), -7, -7), 0, 0, 0.5, 1);
    }
}

TEST(Moving, KeepsIdentityNameAndSize) {
    const Zone start = at(0.1, 0.2, 0.3, 0.4);
    const Zone result = among({at(0.7, 0, 0.3, 1)}).moved(start, 0.21, 0.11);
    EXPECT_EQ(result.id, start.id);
    EXPECT_EQ(result.name, start.name);
    EXPECT_EQ(result.width, start.width);
    EXPECT_EQ(result.height, start.height);
}

TEST(Moving, JumpsOntoAnEdgeNearerThanTheThresholdOnly) {
    // The neighbour's right edge is at 0.25, in other rows; no other line is near.
    const auto geometry = among({at(0, 0.6, 0.25, 0.4)});
    const Zone start = at(0.4, 0.1, 0.3, 0.3);
    EXPECT_EQ(geometry.moved(start, 0.27 - 0.4, 0).x, 0.25);

    // Exactly 0.025 away, in binary too: 0.4 - 0.125 is 0.275 and 0.275 - 0.25 is not below 0.025.
    const Zone exact = geometry.moved(start, -0.125, 0);
    ASSERT_FALSE(exact.x - 0.25 < 0.025);
    EXPECT_NEAR(exact.x, 0.275, tiny);
    EXPECT_NEAR(geometry.moved(start, 0.27501 - 0.4, 0).x, 0.27501, tiny);
}

TEST(Moving, DoesNotSnapWhenSnappingIsOff) {
    EXPECT_NEAR(among({at(0, 0.6, 0.25, 0.4)}, false).moved(at(0.4, 0.1, 0.3, 0.3), -0.13, 0).x,
                0.27, tiny);
}

TEST(Moving, StopsAtANeighbourInTheSameRowsHoweverFarThePointerGoes) {
    const auto geometry = among({at(0.6, 0.4, 0.2, 0.4)});
    for (const double dx : {0.35, 0.5, 0.75, 40.0})
        expectPlace(geometry.moved(at(0, 0.3, 0.3, 0.3), dx, 0), 0.3, 0.3, 0.3, 0.3);

    const auto mirrored = among({at(0.2, 0.4, 0.2, 0.4)});
    for (const double dx : {-0.35, -0.5, -40.0})
        expectPlace(mirrored.moved(at(0.7, 0.3, 0.3, 0.3), dx, 0), 0.4, 0.3, 0.3, 0.3);
}

TEST(Moving, StopsAtANeighbourInTheSameColumns) {
    expectPlace(among({at(0, 0.6, 1, 0.2)}).moved(at(0.3, 0, 0.3, 0.3), 0, 5), 0.3, 0.3, 0.3, 0.3);
    expectPlace(among({at(0, 0.1, 1, 0.2)}).moved(at(0.3, 0.7, 0.3, 0.3), 0, -5), 0.3, 0.3, 0.3,
                0.3);
}

TEST(Moving, PassesANeighbourThatOnlyTouchesItsRows) {
    // Rows overlap by 0.0004: touching. By 0.0006: in the way.
    const Zone start = at(0, 0, 0.3, 0.5);
    EXPECT_NEAR(among({at(0.4, 0.4996, 0.2, 0.5)}).moved(start, 0.6, 0).x, 0.6, tiny);
    EXPECT_NEAR(among({at(0.4, 0.4994, 0.2, 0.5)}).moved(start, 0.6, 0).x, 0.1, tiny);
}

TEST(Moving, CountsANeighbourAsAheadFromWithinTheToleranceOfItsEdge) {
    // The neighbour begins 0.0004 before the zone ends: still ahead, so it pulls the zone back.
    EXPECT_NEAR(among({at(0.4996, 0, 0.3, 1)}, false).moved(at(0, 0, 0.5, 1), 0.2, 0).x, 0, tiny);
    // 0.0006 before: they overlap already, and the neighbour holds nothing.
    EXPECT_NEAR(among({at(0.4994, 0, 0.3, 1)}, false).moved(at(0, 0, 0.5, 1), 0.2, 0).x, 0.2, tiny);
}

TEST(Moving, IgnoresNeighboursBehindItAndThoseItAlreadyOverlaps) {
    EXPECT_NEAR(among({at(0, 0, 0.1, 1)}, false).moved(at(0.2, 0, 0.2, 1), 0.3, 0).x, 0.5, tiny);
    EXPECT_NEAR(among({at(0.3, 0, 0.2, 1)}, false).moved(at(0.2, 0, 0.2, 1), 0.4, 0).x, 0.6, tiny);
}

TEST(Moving, SnapsAgainstTheDirectionOfTheDragUnhindered) {
    // Without a delta on an axis no neighbour on that axis is asked, and snapping still acts.
    const auto geometry = among({at(0.5, 0, 0.3, 1)});
    EXPECT_EQ(geometry.moved(at(0.19, 0, 0.3, 1), 0, 0).x, 0.5 - 0.3);
    EXPECT_EQ(geometry.moved(at(0.21, 0, 0.3, 1), 0, 0).x, 0.5 - 0.3);
}

TEST(Moving, SlidesAlongANeighboursSide) {
    // Dragged right and down towards a neighbour on the right: it stops there and slides down.
    expectPlace(among({at(0.6, 0, 0.4, 0.5)}, false).moved(at(0.1, 0.1, 0.3, 0.3), 0.6, 0.4), 0.3,
                0.5, 0.3, 0.3);
}

TEST(Moving, ChecksRowsWhereItStartsButColumnsWhereItArrives) {
    // The neighbour is neither in the starting rows nor in the starting columns. The horizontal
    // pass lets the zone pass over it, the vertical pass meets it in the new columns.
    expectPlace(among({at(0.5, 0.5, 0.3, 0.3)}, false).moved(at(0.1, 0.1, 0.3, 0.3), 0.4, 0.4), 0.5,
                0.2, 0.3, 0.3);
    // Nor does a neighbour stop the zone that is below it at the start only.
    expectPlace(among({at(0.1, 0.5, 0.3, 0.3)}, false).moved(at(0.1, 0.1, 0.3, 0.3), 0.4, 0.4), 0.5,
                0.5, 0.3, 0.3);
}

TEST(Moving, HoldsAZoneWiderThanTheCanvasAtItsOrigin) {
    // The upper bound 1 - 1.7 is negative and wins over 0; the floor at the end brings it back.
    expectPlace(among({}).moved(at(0.2, 0, 1.7, 1), 0.1, 0), 0, 0, 1.7, 1);
}

TEST(Moving, BringsAZoneFromOutsideInside) {
    expectPlace(among({}, false).moved(at(-0.4, 1.3, 0.2, 0.2), 0, 0), 0, 0.8, 0.2, 0.2);
}

TEST(Moving, IsNotPushedBackInsideByTheNeighbourRule) {
    // The neighbour ahead on the left ends beyond where the zone would fit: it wins over 1 - w.
    expectPlace(among({at(0.5, 0, 0.4004, 1)}, false).moved(at(0.9, 0, 0.1, 1), -0.05, 0), 0.9004,
                0, 0.1, 1);
}

TEST(Moving, IsFlooredAtTheOriginByTheNeighbourRule) {
    // The neighbour ahead leaves less room than the zone is wide: it begins 0.0004 too early.
    expectPlace(among({at(0.2996, 0, 0.3, 1)}, false).moved(at(0, 0, 0.3, 1), 0.1, 0), 0, 0, 0.3,
                1);
}

TEST(Resizing, MovesTheTwoEdgesOfTheCorner) {
    const auto geometry = among({}, false);
    const Zone start = at(0.2, 0.3, 0.4, 0.5);
    expectPlace(geometry.resized(start, Corner::topLeft, 0.1, 0.05), 0.3, 0.35, 0.3, 0.45);
    expectPlace(geometry.resized(start, Corner::topRight, 0.1, 0.05), 0.2, 0.35, 0.5, 0.45);
    expectPlace(geometry.resized(start, Corner::bottomLeft, 0.1, 0.05), 0.3, 0.3, 0.3, 0.55);
    expectPlace(geometry.resized(start, Corner::bottomRight, 0.1, 0.05), 0.2, 0.3, 0.5, 0.55);
}

TEST(Resizing, KeepsIdentityAndName) {
    const Zone start = at(0.2, 0.3, 0.4, 0.5);
    const Zone result = among({}).resized(start, Corner::topLeft, 0.1, 0.1);
    EXPECT_EQ(result.id, start.id);
    EXPECT_EQ(result.name, start.name);
}

TEST(Resizing, StopsAtTheCanvasEdges) {
    const auto geometry = among({}, false);
    const Zone start = at(0.2, 0.3, 0.4, 0.5);
    expectPlace(geometry.resized(start, Corner::topLeft, -3, -3), 0, 0, 0.6, 0.8);
    expectPlace(geometry.resized(start, Corner::bottomRight, 3, 3), 0.2, 0.3, 0.8, 0.7);
}

TEST(Resizing, ClampsTheEdgesItDoesNotMoveToo) {
    // A zone that begins outside the canvas: its left and top edges come inside with any resizing.
    expectPlace(among({}, false).resized(at(-0.2, -0.1, 0.6, 0.5), Corner::bottomRight, 0.1, 0.1),
                0, 0, 0.5, 0.5);
}

TEST(Resizing, SnapsOnlyTheMovedEdges) {
    // The unmoved left edge is 0.01 from a line and stays; the moved right edge jumps.
    const auto geometry = among({at(0.21, 0.9, 0.3, 0.1), at(0.7, 0.91, 0.1, 0.09)});
    expectPlace(geometry.resized(at(0.2, 0.1, 0.3, 0.3), Corner::bottomRight, 0.19, 0.0), 0.2, 0.1,
                0.5, 0.3);
    EXPECT_NEAR(among({at(0.7, 0.9, 0.1, 0.1)}, false)
                    .resized(at(0.2, 0.1, 0.3, 0.3), Corner::bottomRight, 0.19, 0.0)
                    .width,
                0.49, tiny);
}

TEST(Resizing, SnapsStrictlyWithinTheThresholdAndToTheFirstOfEquallyNearLines) {
    ZoneEditorGeometry geometry = among({at(0.5, 0.9, 0.0625, 0.1)});
    geometry.snapThreshold = 0.03125;
    const Zone start = at(0.125, 0.125, 0.25, 0.25);
    // Lines at 0.5 and 0.5625; the right edge goes to 0.46875, exactly the threshold away.
    EXPECT_EQ(geometry.resized(start, Corner::bottomRight, 0.09375, 0).width, 0.34375);
    // To 0.53125, exactly between the two and exactly the threshold away; then just wider.
    EXPECT_EQ(geometry.resized(start, Corner::bottomRight, 0.15625, 0).width, 0.40625);
    geometry.snapThreshold = 0.04;
    EXPECT_EQ(geometry.resized(start, Corner::bottomRight, 0.15625, 0).width, 0.375);
}

TEST(Resizing, StopsAtNeighboursOnEachSide) {
    const Zone start = at(0.4, 0.4, 0.2, 0.2);
    const auto geometry = among({at(0.1, 0.4, 0.1, 0.2), at(0.8, 0.4, 0.1, 0.2),
                                 at(0.4, 0.1, 0.2, 0.1), at(0.4, 0.8, 0.2, 0.1)},
                                false);
    expectPlace(geometry.resized(start, Corner::topLeft, -0.4, -0.4), 0.2, 0.2, 0.4, 0.4);
    expectPlace(geometry.resized(start, Corner::topRight, 0.4, -0.4), 0.4, 0.2, 0.4, 0.4);
    expectPlace(geometry.resized(start, Corner::bottomLeft, -0.4, 0.4), 0.2, 0.4, 0.4, 0.4);
    expectPlace(geometry.resized(start, Corner::bottomRight, 0.4, 0.4), 0.4, 0.4, 0.4, 0.4);
}

TEST(Resizing, UsesTheStartingZoneForBothPasses) {
    // Diagonal neighbour: in neither the starting rows nor columns, so it may be run over.
    expectPlace(among({at(0.5, 0.5, 0.2, 0.2)}, false)
                    .resized(at(0.1, 0.1, 0.3, 0.3), Corner::bottomRight, 0.2, 0.2),
                0.1, 0.1, 0.5, 0.5);
}

TEST(Resizing, IgnoresNeighboursThatOnlyTouchItsRowsOrThatItOverlapsAlready) {
    const Zone start = at(0.1, 0, 0.3, 0.5);
    EXPECT_NEAR(
        among({at(0.6, 0.4996, 0.2, 0.5)}, false).resized(start, Corner::bottomRight, 0.5, 0).width,
        0.8, tiny);
    EXPECT_NEAR(
        among({at(0.6, 0.4994, 0.2, 0.5)}, false).resized(start, Corner::bottomRight, 0.5, 0).width,
        0.5, tiny);
    EXPECT_NEAR(
        among({at(0.3, 0, 0.2, 1)}, false).resized(start, Corner::bottomRight, 0.5, 0).width, 0.8,
        tiny);
}

TEST(Resizing, CountsANeighbourAsBesideItUpToTheToleranceInclusive) {
    // 2^-11 is just under the tolerance and exact in binary.
    ZoneEditorGeometry geometry = among({at(0.5, 0, 0.25, 1)}, false);
    geometry.eps = 0.00048828125;
    const Zone touching = at(0.25, 0, 0.25 + geometry.eps, 1);
    EXPECT_EQ(geometry.resized(touching, Corner::bottomRight, 0.2, 0).width, 0.25);
    const Zone overlapping = at(0.25, 0, 0.25 + 2 * geometry.eps, 1);
    EXPECT_GT(geometry.resized(overlapping, Corner::bottomRight, 0.2, 0).width, 0.45);

    ZoneEditorGeometry left = among({at(0.25, 0, 0.25 + geometry.eps, 1)}, false);
    left.eps = geometry.eps;
    EXPECT_EQ(left.resized(at(0.5, 0, 0.25, 1), Corner::bottomLeft, -0.2, 0).x, 0.5 + left.eps);
}

TEST(Resizing, LeavesTheMinimumAtTheFixedCornerWhenDraggedPastIt) {
    const Zone start = at(0.2, 0.3, 0.4, 0.5);
    const auto geometry = among({});
    expectPlace(geometry.resized(start, Corner::topLeft, 3, 3), 0.55, 0.75, 0.05, 0.05);
    expectPlace(geometry.resized(start, Corner::topRight, -3, 3), 0.2, 0.75, 0.05, 0.05);
    expectPlace(geometry.resized(start, Corner::bottomLeft, 3, -3), 0.55, 0.3, 0.05, 0.05);
    expectPlace(geometry.resized(start, Corner::bottomRight, -3, -3), 0.2, 0.3, 0.05, 0.05);
}

TEST(Resizing, LetsTheMinimumSizeWinOverTheCanvasEdge) {
    // The fixed right edge is at 0.03: the minimum takes the left edge past the canvas.
    const Zone left = among({}).resized(at(0, 0.2, 0.03, 0.2), Corner::bottomLeft, 0.0, 0);
    EXPECT_NEAR(left.x, -0.02, tiny);
    EXPECT_NEAR(left.width, 0.05, tiny);
    const Zone right = among({}).resized(at(0.97, 0.2, 0.03, 0.2), Corner::bottomRight, 0, 0);
    EXPECT_NEAR(right.x, 0.97, tiny);
    EXPECT_NEAR(right.width, 0.05, tiny);
}

TEST(Percentage, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(ZoneEditorGeometry::pct(0.333), QStringLiteral("33%"));
    EXPECT_EQ(ZoneEditorGeometry::pct(0.335), QStringLiteral("34%"));
    EXPECT_EQ(ZoneEditorGeometry::pct(1), QStringLiteral("100%"));
    EXPECT_EQ(ZoneEditorGeometry::pct(0.5), QStringLiteral("50%"));
    EXPECT_EQ(ZoneEditorGeometry::pct(0), QStringLiteral("0%"));
    EXPECT_EQ(ZoneEditorGeometry::pct(0.125), QStringLiteral("13%"));
    EXPECT_EQ(ZoneEditorGeometry::pct(-0.125), QStringLiteral("-13%"));
    EXPECT_EQ(ZoneEditorGeometry::pct(-0.004), QStringLiteral("0%"));
    EXPECT_EQ(ZoneEditorGeometry::pct(1.7), QStringLiteral("170%"));
}

} // namespace
} // namespace tilewright
