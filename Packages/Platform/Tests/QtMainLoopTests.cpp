#include <Platform/QtMainLoop.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <gtest/gtest.h>
#include <optional>

using namespace std::chrono_literals;
using namespace tilewright;

namespace {
/// Turns the event loop until the condition holds or ten seconds have passed.
template<class Condition>
bool waitFor(Condition condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 10'000)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    return condition();
}
} // namespace

TEST(QtMainLoop, RunsPostedTasksLaterAndInOrder) {
    QtMainLoop loop;
    std::vector<int> order;
    loop.post([&] { order.push_back(1); });
    loop.post([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(waitFor([&] { return order.size() == 2; }));
    EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST(QtMainLoop, FiresOnceNotBeforeItsTime) {
    QtMainLoop loop;
    QElapsedTimer clock;
    clock.start();
    int fired = 0;
    const auto timer = loop.scheduleOnce(30ms, [&] { ++fired; });
    EXPECT_TRUE(timer->isValid());
    EXPECT_TRUE(waitFor([&] { return fired > 0; }));
    EXPECT_GE(clock.elapsed(), 29);
    EXPECT_FALSE(timer->isValid());
}

TEST(QtMainLoop, KeepsATimerWhoseHandleWasDropped) {
    QtMainLoop loop;
    int fired = 0;
    loop.scheduleOnce(1ms, [&] { ++fired; }).reset();
    EXPECT_TRUE(waitFor([&] { return fired == 1; }));
}

TEST(QtMainLoop, ARepeatingTimerMayInvalidateItselfFromItsTask) {
    QtMainLoop loop;
    int fired = 0;
    std::shared_ptr<Timer> timer;
    timer = loop.scheduleRepeating(1ms, [&] {
        if (++fired == 3)
            timer->invalidate();
    });
    EXPECT_TRUE(waitFor([&] { return fired == 3; }));
    EXPECT_FALSE(timer->isValid());
    bool passed = false;
    loop.scheduleOnce(20ms, [&] { passed = true; });
    EXPECT_TRUE(waitFor([&] { return passed; }));
    EXPECT_EQ(fired, 3);
}

TEST(QtMainLoop, DropsWhatIsPendingWhenItEnds) {
    int fired = 0;
    std::shared_ptr<Timer> timer;
    {
        QtMainLoop loop;
        loop.post([&] { ++fired; });
        timer = loop.scheduleRepeating(1ms, [&] { ++fired; });
    }
    EXPECT_FALSE(timer->isValid());
    timer->invalidate();
    QCoreApplication::processEvents();
    EXPECT_EQ(fired, 0);
}

TEST(ScopedTimer, InvalidatesItsTimerWhenItEndsAndNotWhenMovedFrom) {
    QtMainLoop loop;
    const auto timer = loop.scheduleRepeating(1s, [] {});
    {
        ScopedTimer outer;
        {
            ScopedTimer inner(timer);
            outer = std::move(inner);
        }
        EXPECT_TRUE(timer->isValid());
    }
    EXPECT_FALSE(timer->isValid());
}

TEST(QtMainLoop, KnowsHowMuchTimeHasPassedAtATimersFiring) {
    QtMainLoop loop;
    const MainLoop::Interval start = loop.now();
    std::optional<MainLoop::Interval> fired;
    loop.scheduleOnce(30ms, [&] { fired = loop.now(); });
    EXPECT_TRUE(waitFor([&] { return fired.has_value(); }));
    // A timer and the clock may round the same moment to neighbouring milliseconds.
    EXPECT_GE(*fired - start, 29ms);
}
