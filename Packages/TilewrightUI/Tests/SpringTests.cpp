#include <TilewrightUI/Look.h>
#include <TilewrightUI/Spring.h>

#include "FakePlatform.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;

/// Restores what the desktop says about motion.
struct Motion {
    explicit Motion(bool reduced) { look::setPrefersReducedMotion(reduced); }
    ~Motion() { look::setPrefersReducedMotion(false); }
};

TEST(Spring, StartsAtRestAndEndsAtItsTarget) {
    const Spring spring{0.25};
    EXPECT_DOUBLE_EQ(spring.progress(0), 0);
    EXPECT_NEAR(spring.progress(1), 1, 1e-6);
    EXPECT_DOUBLE_EQ(spring.advanced({0, 0}, 1, 0).velocity, 0);
}

TEST(Spring, NeitherOvershootsNorTurnsBack) {
    const Spring spring{0.3};
    double last = 0;
    for (int step = 1; step <= 200; ++step) {
        const double progress = spring.progress(step * 0.01);
        EXPECT_GE(progress, last);
        EXPECT_LE(progress, 1);
        last = progress;
    }
}

TEST(Spring, FollowsTheCurveOfItsResponse) {
    // With ω = 2π / response, critically damped: 1 − (1 + ωt)·e^(−ωt).
    EXPECT_NEAR(Spring{0.25}.progress(0.25), 0.98639907, 1e-8);
    EXPECT_NEAR(Spring{0.25}.progress(0.125), 0.82102555, 1e-8);
    EXPECT_NEAR(Spring{0.5}.progress(0.25), Spring{0.25}.progress(0.125), 1e-12);
}

TEST(Spring, AdvancesAlikeInOneStepAndInMany) {
    const Spring spring{0.25};
    Spring::State state{0, 3};
    for (int step = 0; step < 50; ++step)
        state = spring.advanced(state, 1, 0.004);
    const Spring::State whole = spring.advanced({0, 3}, 1, 0.2);
    EXPECT_NEAR(state.value, whole.value, 1e-9);
    EXPECT_NEAR(state.velocity, whole.velocity, 1e-9);
}

TEST(Spring, WithoutResponseTakesNoTime) {
    EXPECT_DOUBLE_EQ(Spring{0}.progress(0), 1);
}

TEST(SpringAnimation, MovesWithTimeAndStopsItsTimerAtTheTarget) {
    FakeDesktop desktop;
    const Motion full(false);
    std::vector<double> seen;
    SpringAnimation animation(Spring{0.25}, 0, [&](double value) { seen.push_back(value); });
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
    animation.animateTo(1);
    EXPECT_TRUE(animation.isRunning());
    desktop.platform.fakeMainLoop.advance(128ms);
    EXPECT_NEAR(animation.value(), Spring{0.25}.progress(0.128), 1e-6);
    desktop.platform.fakeMainLoop.advance(2s);
    EXPECT_DOUBLE_EQ(animation.value(), 1);
    EXPECT_FALSE(animation.isRunning());
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
}

TEST(SpringAnimation, TurnsRoundInMidFlightWithoutAJump) {
    FakeDesktop desktop;
    const Motion full(false);
    SpringAnimation animation(Spring{0.25}, 0, [](double) {});
    animation.animateTo(1);
    desktop.platform.fakeMainLoop.advance(64ms);
    const double before = animation.value();
    animation.animateTo(0);
    EXPECT_DOUBLE_EQ(animation.value(), before);
    desktop.platform.fakeMainLoop.advance(16ms);
    EXPECT_NEAR(animation.value(), before, 0.2);
    desktop.platform.fakeMainLoop.advance(2s);
    EXPECT_DOUBLE_EQ(animation.value(), 0);
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
}

TEST(SpringAnimation, StaysIdleWhenTheTargetIsThePresentOne) {
    FakeDesktop desktop;
    const Motion full(false);
    int changes = 0;
    SpringAnimation animation(Spring{0.25}, 1, [&](double) { ++changes; });
    animation.animateTo(1);
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
    EXPECT_EQ(changes, 0);
}

TEST(SpringAnimation, TakesNoTimeWhereTheUserPrefersReducedMotion) {
    FakeDesktop desktop;
    const Motion reduced(true);
    double seen = 0;
    SpringAnimation animation(Spring{0.25}, 0, [&](double value) { seen = value; });
    animation.animateTo(1);
    EXPECT_DOUBLE_EQ(seen, 1);
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
}

TEST(SpringAnimation, FinishesAtOnceOnDemand) {
    FakeDesktop desktop;
    const Motion full(false);
    SpringAnimation animation(Spring{0.25}, 0, [](double) {});
    animation.animateTo(1);
    desktop.platform.fakeMainLoop.advance(16ms);
    animation.finish();
    EXPECT_DOUBLE_EQ(animation.value(), 1);
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
}

TEST(SpringAnimation, LeavesNoTimerBehindWhenItIsDestroyed) {
    FakeDesktop desktop;
    const Motion full(false);
    {
        SpringAnimation animation(Spring{0.25}, 0, [](double) {});
        animation.animateTo(1);
    }
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
    desktop.platform.fakeMainLoop.advance(1s);
}

} // namespace
} // namespace tilewright::testing
