#pragma once

#include <Platform/MainLoop.h>

#include <functional>

namespace tilewright {

/// A critically damped spring: it reaches its target as fast as it can without overshoot.
struct Spring {
    /// The period, in seconds, that the spring would swing with if nothing damped it.
    double response = 0.25;

    /// A moving value.
    struct State {
        double value = 0;
        /// Per second.
        double velocity = 0;
    };

    /// Where a value stands some seconds (0 or more) after it was let go of towards `target`.
    [[nodiscard]] State advanced(State from, double target, double seconds) const;
    /// The share of the way covered after some seconds from rest: 0 at first, 1 in the end.
    [[nodiscard]] double progress(double seconds) const;
};

/// A value that follows its target on a spring, in steps of the installed platform's main loop.
///
/// Between animations there is no timer. Where the user prefers reduced motion a new target is
/// reached at once. Main thread only.
class SpringAnimation {
public:
    /// `onChange` is called after each change of the value, with the value. It may set new targets.
    SpringAnimation(Spring spring, double value, std::function<void(double)> onChange);
    SpringAnimation(const SpringAnimation&) = delete;
    SpringAnimation& operator=(const SpringAnimation&) = delete;
    ~SpringAnimation();

    [[nodiscard]] double value() const { return state_.value; }
    [[nodiscard]] bool isRunning() const { return timer_.isActive(); }

    /// Starts towards a target from wherever the value is, keeping its speed. Nothing happens when
    /// it is the present target.
    void animateTo(double target);
    /// Takes a value without any motion.
    void jumpTo(double value);
    /// Ends a running animation at its target.
    void finish() { jumpTo(target_); }

private:
    void step();

    const Spring spring_;
    Spring::State state_;
    double target_;
    MainLoop::Interval lastStep_{0};
    std::function<void(double)> onChange_;
    ScopedTimer timer_;
};

} // namespace tilewright
