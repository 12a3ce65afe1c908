#include "FakeMainLoop.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using tilewright::testing::FakeMainLoop;

TEST(FakeMainLoop, FiresATimerExactlyAtItsDeadline) {
    FakeMainLoop loop;
    int fired = 0;
    loop.scheduleOnce(100ms, [&] { ++fired; });
    loop.advance(99ms);
    EXPECT_EQ(fired, 0);
    loop.advance(1ms);
    EXPECT_EQ(fired, 1);
    loop.advance(1000ms);
    EXPECT_EQ(fired, 1);
}

TEST(FakeMainLoop, RepeatsUntilInvalidated) {
    FakeMainLoop loop;
    int fired = 0;
    const auto timer = loop.scheduleRepeating(1s, [&] { ++fired; });
    loop.advance(3500ms);
    EXPECT_EQ(fired, 3);
    timer->invalidate();
    loop.advance(3s);
    EXPECT_EQ(fired, 3);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST(FakeMainLoop, KeepsATimerWhoseHandleWasDropped) {
    FakeMainLoop loop;
    int fired = 0;
    loop.scheduleOnce(1s, [&] { ++fired; }).reset();
    loop.advance(1s);
    EXPECT_EQ(fired, 1);
}

TEST(FakeMainLoop, RunsPostedTasksInOrderAndThoseTheyPost) {
    FakeMainLoop loop;
    std::vector<int> order;
    loop.post([&] {
        order.push_back(1);
        loop.post([&] { order.push_back(3); });
    });
    loop.post([&] { order.push_back(2); });
    loop.runPosted();
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(FakeMainLoop, ShowsATimersTaskTheTimeItIsDueAt) {
    FakeMainLoop loop;
    std::vector<FakeMainLoop::Interval> seen;
    const auto start = loop.now();
    loop.scheduleRepeating(8ms, [&] { seen.push_back(loop.now() - start); });
    loop.advance(20ms);
    EXPECT_EQ(seen, (std::vector<FakeMainLoop::Interval>{8ms, 16ms}));
    EXPECT_EQ(loop.now() - start, 20ms);
}
