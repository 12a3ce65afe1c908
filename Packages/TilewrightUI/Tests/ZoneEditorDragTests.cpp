#include "FakePlatform.h"

#include <TilewrightUI/ZoneEditorDrag.h>

#include <gtest/gtest.h>
#include <random>

namespace tilewright {
namespace {

using Corner = ZoneEditorGeometry::Corner;
constexpr QSizeF canvas(480, 300);

class ZoneEditorDragTest : public ::testing::Test {
protected:
    ZoneEditorDragTest() { model.newLayout(); }

    const Zone& zone() { return model.zones()[0]; }

    testing::FakeDesktop desktop;
    LayoutEditorModel model{LayoutStore::shared(), desktop.platform.mainLoop};
};

TEST_F(ZoneEditorDragTest, BeginsTenPointsAwayFromThePress) {
    ZoneEditorDrag drag(model, 0, std::nullopt);
    drag.changed({6, 7}, canvas);
    EXPECT_FALSE(drag.hasBegun());
    EXPECT_EQ(model.selectedID(), std::nullopt);
    EXPECT_EQ(zone().x, 0);

    drag.changed({6, 8}, canvas);
    EXPECT_TRUE(drag.hasBegun());
    EXPECT_EQ(model.selectedID(), zone().id);
}

TEST_F(ZoneEditorDragTest, CountsTheWholeWayFromThePressAndFollowsItBack) {
    model.setSnapToEdges(false);
    ZoneEditorDrag drag(model, 0, std::nullopt);
    drag.changed({48, 0}, canvas);
    EXPECT_NEAR(zone().x, 0.1, 1e-12);
    drag.changed({2.4, 0}, canvas);
    EXPECT_NEAR(zone().x, 0.005, 1e-12);
}

TEST_F(ZoneEditorDragTest, DividesTheWayByTheCanvas) {
    model.setSnapToEdges(false);
    ZoneEditorDrag drag(model, 0, Corner::bottomRight);
    drag.changed({-48, -60}, canvas);
    EXPECT_NEAR(zone().width, 0.4, 1e-12);
    EXPECT_NEAR(zone().height, 0.8, 1e-12);
}

TEST_F(ZoneEditorDragTest, SnapsOnlyWhileTheEditorSnaps) {
    ZoneEditorDrag drag(model, 0, std::nullopt);
    drag.changed({11, 0}, canvas);
    EXPECT_EQ(zone().x, 0);
    model.setSnapToEdges(false);
    drag.changed({11, 0}, canvas);
    EXPECT_NEAR(zone().x, 11 / 480.0, 1e-12);
}

TEST_F(ZoneEditorDragTest, PutsTheZoneBackWhenCancelled) {
    const Zone before = zone();
    ZoneEditorDrag drag(model, 0, std::nullopt);
    drag.changed({100, 0}, canvas);
    ASSERT_NE(zone(), before);
    drag.cancel();
    EXPECT_EQ(zone(), before);
    EXPECT_FALSE(drag.hasBegun());
}

TEST_F(ZoneEditorDragTest, SurvivesAZoneThatGoesAndACanvasWithoutSize) {
    ZoneEditorDrag drag(model, 0, std::nullopt);
    drag.changed({100, 0}, {0, 0});
    EXPECT_FALSE(drag.hasBegun());
    drag.changed({100, 0}, canvas);
    model.deleteSelected();
    drag.changed({200, 0}, canvas);
    drag.cancel();
    EXPECT_TRUE(model.zones().empty());
}

TEST_F(ZoneEditorDragTest, LeavesALayoutLoadedMeanwhileAlone) {
    ZoneEditorDrag drag(model, 0, std::nullopt);
    drag.changed({100, 0}, canvas);
    model.loadPreset(ZoneLayout::thirds());
    const auto loaded = model.zones();
    drag.changed({200, 0}, canvas);
    drag.cancel();
    EXPECT_EQ(model.zones(), loaded);
}

TEST_F(ZoneEditorDragTest, EndsAtTheSamePlaceHoweverItWasCutIntoSteps) {
    std::mt19937_64 random(99);
    std::uniform_real_distribution<double> fraction(0, 1);
    std::uniform_real_distribution<double> way(-500, 500);
    std::uniform_int_distribution<int> small(0, 4);
    const auto randomZone = [&] {
        const double x = fraction(random) * 0.9;
        const double y = fraction(random) * 0.9;
        return Zone{QUuid::createUuidV5(QUuid(), QByteArray::number(random())),
                    {},
                    x,
                    y,
                    0.05 + fraction(random) * (0.95 - x),
                    0.05 + fraction(random) * (0.95 - y)};
    };
    for (int round = 0; round < 100'000; ++round) {
        ZoneLayout layout{QUuid(), {}, {}, false, {randomZone()}};
        const int neighbours = small(random);
        for (int index = 0; index < neighbours; ++index)
            layout.zones.push_back(randomZone());
        const auto corner =
            small(random) == 0
                ? std::nullopt
                : std::optional(ZoneEditorGeometry::allCorners[std::size_t(round % 4)]);
        QPointF end(way(random), way(random));
        if (std::hypot(end.x(), end.y()) < ZoneEditorDrag::minimumDistance)
            end *= 1000;

        model.setSnapToEdges(round % 2 == 0);
        model.loadForEditing(layout);
        ZoneEditorDrag atOnce(model, 0, corner);
        atOnce.changed(end, canvas);
        const Zone expected = zone();

        model.loadForEditing(layout);
        ZoneEditorDrag inSteps(model, 0, corner);
        const int steps = small(random) + 1;
        for (int step = 0; step < steps; ++step)
            inSteps.changed({way(random), way(random)}, canvas);
        inSteps.changed(end, canvas);
        ASSERT_EQ(zone(), expected) << "round " << round;
    }
}

} // namespace
} // namespace tilewright
