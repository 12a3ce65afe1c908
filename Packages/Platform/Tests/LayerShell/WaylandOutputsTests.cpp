#include "WaylandFixture.h"

#include <LayerShell/WaylandOutputs.h>

#include <QSignalSpy>

namespace tilewright::testing {
namespace {

class WaylandOutputsTest : public WaylandFixture {
protected:
    [[nodiscard]] bool come(std::size_t count) {
        return waitUntil([&] { return outputs.all().size() == count; });
    }

    WaylandOutputs outputs{connection};
};

const FakeOutput turned{.name = QStringLiteral("HDMI-A-1"),
                        .description = QStringLiteral("Turned display"),
                        .make = QStringLiteral("Other maker"),
                        .model = QStringLiteral("Other model"),
                        .frame{1280, 0, 864, 1536},
                        .mode{1920, 1080},
                        .transform = 1,
                        .wholeScale = 2};

TEST_F(WaylandOutputsTest, TellsWhatIsKnownOfEachDisplay) {
    start();
    compositor->addOutput({.frame{0, 0, 1280, 720}, .wholeScale = 2});
    compositor->addOutput(turned);
    ASSERT_TRUE(come(2));
    const WaylandOutput& first = outputs.all().at(0);
    EXPECT_EQ(first.name, QStringLiteral("DP-1"));
    EXPECT_EQ(first.frame, QRect(0, 0, 1280, 720));
    EXPECT_EQ(first.pixels, QSize(1920, 1080));
    EXPECT_EQ(first.pixelsPerUnit(), 1.5);
    EXPECT_EQ(first.wholeScale, 2);
    const WaylandOutput& second = outputs.all().at(1);
    EXPECT_EQ(second.name, QStringLiteral("HDMI-A-1"));
    EXPECT_EQ(second.description, QStringLiteral("Turned display"));
    EXPECT_EQ(second.make, QStringLiteral("Other maker"));
    EXPECT_EQ(second.model, QStringLiteral("Other model"));
    EXPECT_EQ(second.frame, QRect(1280, 0, 864, 1536));
    EXPECT_EQ(second.pixels, QSize(1080, 1920));
    EXPECT_EQ(second.pixelsPerUnit(), 1.25);
}

TEST_F(WaylandOutputsTest, LearnsTheNameFromTheLogicalOutputOfAnOlderCompositor) {
    connect({.outputManager = 2, .output = 3});
    ASSERT_TRUE(come(1));
    EXPECT_EQ(outputs.all().at(0).name, QStringLiteral("DP-1"));
    EXPECT_EQ(outputs.all().at(0).frame, QRect(0, 0, 1920, 1080));
}

TEST_F(WaylandOutputsTest, CountsInWholeScalesWhereNoLogicalGeometryIsTold) {
    start({.outputManager = 0});
    compositor->addOutput({.frame{100, 0, 0, 0}, .mode{3840, 2160}, .wholeScale = 2});
    ASSERT_TRUE(come(1));
    EXPECT_EQ(outputs.all().at(0).frame, QRect(100, 0, 1920, 1080));
    EXPECT_EQ(outputs.all().at(0).pixelsPerUnit(), 2);
}

TEST_F(WaylandOutputsTest, FollowsDisplaysThatComeChangeAndGo) {
    connect();
    ASSERT_TRUE(come(1));
    QSignalSpy changes(&outputs, &WaylandOutputs::changed);
    compositor->addOutput(turned);
    ASSERT_TRUE(come(2));
    EXPECT_EQ(changes.count(), 1);
    const std::uint32_t number = outputs.all().at(1).number;
    EXPECT_TRUE(outputs.object(number));
    FakeOutput upright = turned;
    upright.transform = 0;
    upright.frame = {1280, 0, 1536, 864};
    compositor->changeOutput(upright);
    ASSERT_TRUE(waitUntil([&] { return changes.count() == 2; }));
    EXPECT_EQ(outputs.all().at(1).pixels, QSize(1920, 1080));
    EXPECT_EQ(outputs.all().at(1).frame, QRect(1280, 0, 1536, 864));
    compositor->removeOutput(turned.name);
    ASSERT_TRUE(come(1));
    EXPECT_EQ(changes.count(), 3);
    EXPECT_FALSE(outputs.object(number));
}

TEST_F(WaylandOutputsTest, FindsADisplayByItsNameAndByItsPlace) {
    start();
    compositor->addOutput({.frame{0, 0, 1280, 720}});
    compositor->addOutput(turned);
    ASSERT_TRUE(come(2));
    EXPECT_EQ(outputs.named(turned.name), &outputs.all().at(1));
    EXPECT_FALSE(outputs.named(QStringLiteral("DP-9")));
    EXPECT_EQ(outputs.at({0, 0, 1280, 720}), &outputs.all().at(0));
    EXPECT_EQ(outputs.at({1279, 0, 865, 1536}), &outputs.all().at(1));
    EXPECT_FALSE(outputs.at({5000, 0, 10, 10}));
}

TEST_F(WaylandOutputsTest, HasNoneWithoutACompositor) {
    connect();
    ASSERT_TRUE(come(1));
    compositor.reset();
    ASSERT_TRUE(come(0));
    start();
    compositor->addOutput(turned);
    ASSERT_TRUE(come(1));
    EXPECT_EQ(outputs.all().at(0).name, turned.name);
}

} // namespace
} // namespace tilewright::testing
