// Which display a point belongs to.

#include <FakeScreens.h>

#include <gtest/gtest.h>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

class ScreensTest : public ::testing::Test {
protected:
    /// A display to the right of the primary one, with a gap between, and one that overlaps it.
    ScreensTest() { screens.setScreens({primary, right, mirror}); }

    const ScreenPtr primary = makeScreen({.frame = {0, 0, 1000, 800}});
    const ScreenPtr right = makeScreen({.frame = {1100, -200, 500, 500}});
    const ScreenPtr mirror = makeScreen({.frame = {0, 0, 600, 400}});
    FakeScreens screens;
};

} // namespace

TEST_F(ScreensTest, AnswerTheFirstDisplayWhoseFrameHoldsThePoint) {
    EXPECT_EQ(screens.at({10, 10}), primary) << "the first of two";
    EXPECT_EQ(screens.at({0, 0}), primary);
    EXPECT_EQ(screens.at({1100, -200}), right);
}

TEST_F(ScreensTest, CountTheMaximumEdgesToTheNextDisplay) {
    EXPECT_EQ(screens.at({1000, 10}), nullptr);
    EXPECT_EQ(screens.at({10, 800}), nullptr);
    EXPECT_EQ(screens.at({1050, 0}), nullptr) << "in the gap";
}

TEST_F(ScreensTest, AnswerTheNearestDisplayForAPointOnNone) {
    EXPECT_EQ(screens.nearest({1040, 10}), primary);
    EXPECT_EQ(screens.nearest({1060, 10}), right);
    EXPECT_EQ(screens.nearest({1300, 900}), primary) << "400 points away, the other 600";
    EXPECT_EQ(screens.nearest({-5000, 0}), primary) << "the first of two as near";
    EXPECT_EQ(screens.nearest({10, 10}), primary);
}

TEST_F(ScreensTest, AnswerNoneWithoutDisplays) {
    screens.setScreens({});
    EXPECT_EQ(screens.at({0, 0}), nullptr);
    EXPECT_EQ(screens.nearest({0, 0}), nullptr);
}
