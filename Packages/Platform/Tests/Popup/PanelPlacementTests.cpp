#include <Popup/PanelPlacement.h>

#include <gtest/gtest.h>

using tilewright::PanelGrowth;
using tilewright::PanelPlacement;
using tilewright::QtRect;

namespace {

constexpr int gap = PanelPlacement::gap;
const QtRect frame{0, 0, 1920, 1080};
const QSize panel(300, 500);

QRect place(const PanelPlacement& placement, QSize size = panel) {
    return placement.place(size).toQRect();
}

} // namespace

TEST(PanelPlacement, OpensBelowAnItemOfABarAtTheTop) {
    const PanelPlacement placement{{1000, 0, 24, 28}, frame, {0, 28, 1920, 1052}};
    EXPECT_EQ(place(placement).topLeft(), QPoint(1012 - 150, 28 + gap));
}

TEST(PanelPlacement, OpensAboveAnItemOfABarAtTheBottom) {
    const PanelPlacement placement{{1000, 1052, 24, 28}, frame, {0, 0, 1920, 1052}};
    EXPECT_EQ(place(placement).topLeft(), QPoint(1012 - 150, 1052 - gap - 500));
}

TEST(PanelPlacement, OpensBesideAnItemOfABarAtASide) {
    const PanelPlacement left{{0, 500, 40, 24}, frame, {40, 0, 1880, 1080}};
    EXPECT_EQ(place(left).topLeft(), QPoint(40 + gap, 512 - 250));
    const PanelPlacement right{{1880, 500, 40, 24}, frame, {0, 0, 1880, 1080}};
    EXPECT_EQ(place(right).topLeft(), QPoint(1880 - gap - 300, 512 - 250));
}

TEST(PanelPlacement, StaysOnTheScreenBesideAnItemInItsCorner) {
    const PanelPlacement placement{{1896, 0, 24, 28}, frame, {0, 28, 1920, 1052}};
    EXPECT_EQ(place(placement).topLeft(), QPoint(1920 - gap - 300, 28 + gap));
}

TEST(PanelPlacement, TreatsABarWithoutReservedSpaceByTheNearerEdge) {
    const PanelPlacement top{{1000, 0, 24, 28}, frame, frame};
    EXPECT_EQ(place(top).top(), 28 + gap);
    const PanelPlacement bottom{{1000, 1052, 24, 28}, frame, frame};
    EXPECT_EQ(place(bottom).top() + 500, 1052 - gap);
}

TEST(PanelPlacement, OpensByAPointThatIsAllThatIsKnown) {
    const PanelPlacement placement{{700, 300, 0, 0}, frame, frame};
    EXPECT_EQ(place(placement).topLeft(), QPoint(550, 300 + gap));
}

TEST(PanelPlacement, KeepsItsTopLeftCornerVisibleWhereItDoesNotFit) {
    const PanelPlacement placement{{10, 190, 24, 10}, {0, 0, 200, 200}, {0, 0, 200, 190}};
    EXPECT_EQ(place(placement).topLeft(), QPoint(gap, gap));
}

TEST(PanelPlacement, TellsTheRoomAroundAPlaceOnEachSide) {
    const PanelPlacement placement{{}, frame, {50, 32, 1800, 1000}};
    EXPECT_EQ(placement.roomAround({60, 52, 300, 200}), QMargins(10, 20, 1490, 780));
    EXPECT_EQ(placement.roomAround({10, 12, 2000, 1100}), QMargins(0, 0, 0, 0));
}

TEST(PanelPlacement, CountsInTheUnitsOfItsSpace) {
    const PanelPlacement placement{{1000, 0, 24, 28}, frame, {0, 28, 1920, 1052}, 2};
    EXPECT_EQ(place(placement, {300, 200}), QRect(1012 - 300, 28 + 2 * gap, 600, 400));
    EXPECT_EQ(placement.availableHeight(), 1052 / 2 - 2 * gap);
    EXPECT_EQ(placement.roomAround({101, 36, 600, 400}), QMargins(50, 4, 609, 322));
}

TEST(PanelPlacement, IsWhollyInsideTheVisibleFrameFromEveryPointOfItsScreen) {
    for (const QRect& screen :
         {QRect(0, 0, 1920, 1080), QRect(-1280, -200, 1280, 1024), QRect(1920, 300, 800, 600)}) {
        const QRect visible = screen.adjusted(0, 24, 0, -40);
        for (int x = screen.left(); x <= screen.right(); x += 37) {
            for (int y = screen.top(); y <= screen.bottom(); y += 29) {
                const PanelPlacement placement{
                    {x, y, 0, 0}, QtRect::of(screen), QtRect::of(visible)};
                ASSERT_TRUE(visible.contains(place(placement))) << x << ", " << y;
            }
        }
    }
}

TEST(PanelGrowth, KeepsTheTopAsFarAsItWasForeseen) {
    const PanelPlacement above{{1000, 1052, 24, 28}, frame, {0, 0, 1920, 1052}};
    const PanelPlacement beside{{0, 500, 40, 24}, frame, {40, 0, 1880, 1080}};
    for (const PanelPlacement& placement : {above, beside}) {
        PanelGrowth growth;
        const int top = place(placement, {300, 600}).top();
        EXPECT_EQ(growth.place(placement, {300, 500}, 100).y, top);
        EXPECT_EQ(growth.place(placement, {300, 600}, 0).y, top);
        EXPECT_EQ(growth.place(placement, {300, 400}, 0).y, top) << "it may grow once more";
        EXPECT_EQ(growth.place(placement, {200, 400}, 0).toQRect(),
                  QRect(QPoint(place(placement, {200, 400}).left(), top), QSize(200, 400)));
    }
}

TEST(PanelGrowth, PlacesAPanelAnewThatIsHigherThanForeseen) {
    const PanelPlacement placement{{1000, 1052, 24, 28}, frame, frame};
    PanelGrowth growth;
    EXPECT_EQ(growth.place(placement, {300, 500}, 100).y, 1052 - gap - 600);
    EXPECT_EQ(growth.place(placement, {300, 601}, 50).y, 1052 - gap - 651);
    EXPECT_EQ(growth.place(placement, {300, 651}, 0).y, 1052 - gap - 651);
}

TEST(PanelGrowth, ForeseesAnewOnceReset) {
    const PanelPlacement placement{{1000, 1052, 24, 28}, frame, frame};
    PanelGrowth growth;
    EXPECT_EQ(growth.place(placement, {300, 500}, 100).y, 1052 - gap - 600);
    growth.reset();
    EXPECT_EQ(growth.place(placement, {300, 500}, 0).y, 1052 - gap - 500);
}
