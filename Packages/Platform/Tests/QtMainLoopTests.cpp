#include <Platform/QtMainLoop.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
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

/// Notes the timers that a thread asks the system for, and lets none of them fire.
class TimerList final : public QAbstractEventDispatcher {
public:
    using Entry = std::pair<qint64, Qt::TimerType>;
    explicit TimerList(std::vector<Entry>& entries)
        : entries_(entries) {}

    void registerTimer(int /*id*/, qint64 interval, Qt::TimerType type,
                       QObject* /*object*/) override {
        entries_.emplace_back(interval, type);
    }
    bool unregisterTimer(int /*id*/) override { return true; }
    bool unregisterTimers(QObject* /*object*/) override { return true; }
    QList<TimerInfo> registeredTimers(QObject* /*object*/) const override { return {}; }
    int remainingTime(int /*id*/) override { return -1; }
    bool processEvents(QEventLoop::ProcessEventsFlags /*flags*/) override { return false; }
    void registerSocketNotifier(QSocketNotifier* /*notifier*/) override {}
    void unregisterSocketNotifier(QSocketNotifier* /*notifier*/) override {}
    void wakeUp() override {}
    void interrupt() override {}

private:
    std::vector<Entry>& entries_;
};
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

TEST(QtMainLoop, FiresOnceAlsoWhereItsTaskTurnsTheLoop) {
    QtMainLoop loop;
    int fired = 0;
    bool passed = false;
    const auto timer = loop.scheduleOnce(1ms, [&] {
        ++fired;
        loop.scheduleOnce(20ms, [&] { passed = true; });
        EXPECT_TRUE(waitFor([&] { return passed; }));
    });
    EXPECT_TRUE(waitFor([&] { return passed; }));
    EXPECT_EQ(fired, 1);
    EXPECT_FALSE(timer->isValid());
}

TEST(QtMainLoop, AsksForTimersThatNeverFireEarlyToSaveWakeUps) {
    std::vector<TimerList::Entry> entries;
    QThread thread;
    thread.setEventDispatcher(new TimerList(entries));
    QObject::connect(
        &thread, &QThread::started, &thread,
        [] {
            QtMainLoop loop;
            loop.scheduleOnce(1800ms, [] {});
            loop.scheduleRepeating(1s, [] {});
            QThread::currentThread()->quit();
        },
        Qt::DirectConnection);
    thread.start();
    ASSERT_TRUE(thread.wait(10'000));
    EXPECT_EQ(entries,
              (std::vector<TimerList::Entry>{{1800, Qt::PreciseTimer}, {1000, Qt::PreciseTimer}}));
}

TEST(QtMainLoop, TellsTheTimeByAClockThatNobodySets) {
    const QtMainLoop loop;
    const auto steady = [] {
        return std::chrono::duration_cast<MainLoop::Interval>(
            std::chrono::steady_clock::now().time_since_epoch());
    };
    const MainLoop::Interval before = steady();
    const MainLoop::Interval now = loop.now();
    EXPECT_GE(now, before);
    EXPECT_LE(now, steady());
}
