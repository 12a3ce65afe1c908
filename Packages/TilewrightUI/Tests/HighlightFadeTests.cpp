#include <TilewrightUI/HighlightFade.h>

#include <gtest/gtest.h>
#include <map>

using namespace std::chrono_literals;
using namespace tilewright;

TEST(HighlightFade, IsPlainAndAtRestAtFirst) {
    const HighlightFade fade;
    EXPECT_EQ(fade.value(), 0);
    EXPECT_FALSE(fade.isHighlighted());
    EXPECT_FALSE(fade.isRunning());
}

TEST(HighlightFade, EndsWhenATenthAndAFiftiethOfASecondHavePassed) {
    HighlightFade fade;
    fade.start(true, 1000ms);
    fade.advance(1119ms);
    EXPECT_TRUE(fade.isRunning());
    EXPECT_LT(fade.value(), 1);
    fade.advance(1120ms);
    EXPECT_FALSE(fade.isRunning());
    EXPECT_EQ(fade.value(), 1);
}

TEST(HighlightFade, ShowsAChangeInItsFirstFrame) {
    HighlightFade fade;
    fade.start(true, 0ms);
    EXPECT_GT(fade.value(), 0.05);
    EXPECT_LT(fade.value(), 0.2);
}

TEST(HighlightFade, FollowsTheEaseOutCurveOneFrameAhead) {
    // The cubic curve through (0, 0), (0.58, 1) and (1, 1), at 1, 3, 5 and 7 ninths of its way.
    const std::map<HighlightFade::Time, double> curve{
        {0ms, 0.178}, {30ms, 0.488}, {60ms, 0.742}, {90ms, 0.925}};
    HighlightFade in;
    in.start(true, 0ms);
    HighlightFade out;
    out.finish(true);
    out.start(false, 0ms);
    for (const auto& [now, value] : curve) {
        in.advance(now);
        EXPECT_NEAR(in.value(), value, 0.002) << now.count();
        out.advance(now);
        EXPECT_NEAR(out.value(), 1 - value, 0.002) << now.count();
    }
}

TEST(HighlightFade, SlowsDownTowardsItsEnd) {
    HighlightFade fade;
    fade.start(true, 0ms);
    double last = fade.value();
    double lastStep = 1;
    for (auto now = HighlightFade::frame; now <= HighlightFade::duration;
         now += HighlightFade::frame) {
        fade.advance(now);
        const double step = fade.value() - last;
        EXPECT_GT(step, 0) << now.count();
        EXPECT_LT(step, lastStep + 1e-9) << now.count();
        last = fade.value();
        lastStep = step;
    }
    EXPECT_EQ(last, 1);
}

TEST(HighlightFade, TurnsBackFromWhereItIs) {
    HighlightFade fade;
    fade.start(true, 0ms);
    fade.advance(40ms);
    const double reached = fade.value();
    fade.start(false, 40ms);
    EXPECT_LT(fade.value(), reached);
    EXPECT_GT(fade.value(), reached * 0.8);
    fade.advance(159ms);
    EXPECT_TRUE(fade.isRunning());
    fade.advance(160ms);
    EXPECT_EQ(fade.value(), 0);
    EXPECT_FALSE(fade.isRunning());
}

TEST(HighlightFade, DoesNotStartOverOnTheSameWay) {
    HighlightFade fade;
    fade.start(true, 0ms);
    fade.start(true, 100ms);
    fade.advance(120ms);
    EXPECT_FALSE(fade.isRunning());
    EXPECT_EQ(fade.value(), 1);
    fade.start(true, 200ms);
    EXPECT_FALSE(fade.isRunning());
}

TEST(HighlightFade, EndsOnTimeHoweverLateAFrameComes) {
    HighlightFade fade;
    fade.start(true, 0ms);
    fade.advance(5000ms);
    EXPECT_EQ(fade.value(), 1);
    EXPECT_FALSE(fade.isRunning());
}

TEST(HighlightFade, EndsWithAFrame) {
    EXPECT_EQ(HighlightFade::duration % HighlightFade::frame, 0ms);
}

TEST(HighlightFade, CanBeAtItsEndAtOnce) {
    HighlightFade fade;
    fade.start(true, 0ms);
    fade.finish(true);
    EXPECT_EQ(fade.value(), 1);
    EXPECT_FALSE(fade.isRunning());
    fade.advance(10ms);
    EXPECT_EQ(fade.value(), 1);
    fade.finish(false);
    EXPECT_EQ(fade.value(), 0);
    EXPECT_FALSE(fade.isHighlighted());
}
