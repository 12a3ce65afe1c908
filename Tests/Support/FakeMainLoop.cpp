#include "FakeMainLoop.h"

#include <algorithm>

namespace tilewright::testing {

class FakeMainLoop::FakeTimer final : public Timer {
public:
    FakeTimer(Interval every, Interval firstDeadline, bool isRepeating, Task action)
        : interval(every)
        , deadline(firstDeadline)
        , repeats(isRepeating)
        , task(std::move(action)) {}

    void invalidate() override { isValid_ = false; }
    bool isValid() const override { return isValid_; }

    const Interval interval;
    Interval deadline;
    const bool repeats;
    const Task task;

private:
    bool isValid_ = true;
};

FakeMainLoop::~FakeMainLoop() = default;

void FakeMainLoop::post(Task task) {
    posted_.push_back(std::move(task));
}

std::shared_ptr<Timer> FakeMainLoop::scheduleOnce(Interval interval, Task task) {
    return schedule(interval, false, std::move(task));
}

std::shared_ptr<Timer> FakeMainLoop::scheduleRepeating(Interval interval, Task task) {
    return schedule(interval, true, std::move(task));
}

std::shared_ptr<Timer> FakeMainLoop::schedule(Interval interval, bool repeats, Task task) {
    auto timer = std::make_shared<FakeTimer>(interval, now_ + interval, repeats, std::move(task));
    timers_.push_back(timer);
    return timer;
}

void FakeMainLoop::runPosted() {
    while (!posted_.empty()) {
        const Task task = std::move(posted_.front());
        posted_.pop_front();
        task();
    }
}

void FakeMainLoop::advance(Interval duration) {
    const Interval end = now_ + duration;
    runPosted();
    for (;;) {
        dropInvalid();
        const auto next =
            std::min_element(timers_.begin(), timers_.end(), [](const auto& a, const auto& b) {
                return a->deadline < b->deadline;
            });
        if (next == timers_.end() || (*next)->deadline > end)
            break;
        now_ = (*next)->deadline;
        fire(*next);
        runPosted();
    }
    now_ = end;
}

void FakeMainLoop::fire(const std::shared_ptr<FakeTimer>& timer) {
    const std::shared_ptr<FakeTimer> keepAlive = timer;
    if (keepAlive->repeats)
        keepAlive->deadline += keepAlive->interval;
    else
        keepAlive->invalidate();
    keepAlive->task();
}

void FakeMainLoop::fireRepeatingTimersOnce() {
    const auto timers = timers_;
    for (const auto& timer : timers) {
        if (timer->repeats && timer->isValid())
            timer->task();
    }
}

std::size_t FakeMainLoop::activeTimerCount() const {
    return static_cast<std::size_t>(std::count_if(
        timers_.begin(), timers_.end(), [](const auto& timer) { return timer->isValid(); }));
}

void FakeMainLoop::dropInvalid() {
    std::erase_if(timers_, [](const auto& timer) { return !timer->isValid(); });
}

} // namespace tilewright::testing
