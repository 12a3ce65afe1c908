#pragma once

#include <Platform/MainLoop.h>

#include <deque>
#include <memory>
#include <vector>

namespace tilewright::testing {

/// A main loop whose time stands still until a test advances it. Timers fire exactly at their
/// deadline, the earlier one first, those due together in the order of scheduling.
class FakeMainLoop final : public MainLoop {
public:
    ~FakeMainLoop() override;

    void post(Task task) override;
    std::shared_ptr<Timer> scheduleOnce(Interval interval, Task task) override;
    std::shared_ptr<Timer> scheduleRepeating(Interval interval, Task task) override;
    [[nodiscard]] Interval now() const override { return now_; }

    /// Runs what is posted, also what that posts, without letting time pass.
    void runPosted();
    /// Runs what is posted, then lets time pass, firing each timer when it is due and running what
    /// the firings post.
    void advance(Interval duration);
    /// Fires every valid repeating timer once, without running what it posts: a late or stray tick.
    void fireRepeatingTimersOnce();

    [[nodiscard]] std::size_t postedCount() const { return posted_.size(); }
    /// How many timers could still fire.
    [[nodiscard]] std::size_t activeTimerCount() const;

private:
    class FakeTimer;

    std::shared_ptr<Timer> schedule(Interval interval, bool repeats, Task task);
    void fire(const std::shared_ptr<FakeTimer>& timer);
    void dropInvalid();

    Interval now_{0};
    std::deque<Task> posted_;
    std::vector<std::shared_ptr<FakeTimer>> timers_;
};

} // namespace tilewright::testing
