#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace tilewright {

/// A scheduled call. The loop keeps it alive until it has fired (once) or is invalidated; dropping
/// the last reference from outside does not stop it.
class Timer {
public:
    Timer() = default;
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    virtual ~Timer();

    /// Stops the timer: its task is not called again. May be called from within the task.
    virtual void invalidate() = 0;
    /// Whether it may still fire.
    [[nodiscard]] virtual bool isValid() const = 0;
};

/// The main thread's event loop. Whatever waits for a time or, in the core, for a later turn goes
/// through it, so that tests can advance time. Main thread only.
class MainLoop {
public:
    using Task = std::function<void()>;
    using Interval = std::chrono::milliseconds;

    virtual ~MainLoop() = default;

    /// Calls the task on a later turn of the loop, in the order of posting.
    virtual void post(Task task) = 0;
    /// Calls the task once, after the interval.
    virtual std::shared_ptr<Timer> scheduleOnce(Interval interval, Task task) = 0;
    /// Calls the task each time the interval has passed. Firings that came due while the loop was
    /// busy are merged into one.
    virtual std::shared_ptr<Timer> scheduleRepeating(Interval interval, Task task) = 0;
    /// How much time has passed since some fixed moment. Never goes back; goes on while the loop is
    /// busy, and follows no change of the wall clock.
    [[nodiscard]] virtual Interval now() const = 0;
};

/// Cancels a timer when it goes out of scope.
class ScopedTimer {
public:
    ScopedTimer() = default;
    explicit ScopedTimer(std::shared_ptr<Timer> timer)
        : timer_(std::move(timer)) {}
    ScopedTimer(ScopedTimer&& other) noexcept
        : timer_(std::move(other.timer_)) {}
    ScopedTimer& operator=(ScopedTimer&& other) noexcept {
        if (this != &other) {
            reset();
            timer_ = std::move(other.timer_);
        }
        return *this;
    }
    ~ScopedTimer() { reset(); }

    /// Cancels the timer, if there is one.
    void reset() {
        if (timer_)
            timer_->invalidate();
        timer_.reset();
    }
    /// Whether there is a timer that may still fire.
    [[nodiscard]] bool isActive() const { return timer_ && timer_->isValid(); }

private:
    std::shared_ptr<Timer> timer_;
};

} // namespace tilewright
