#include "Spring.h"

#include "Look.h"

#include <Platform/Platform.h>

#include <cmath>
#include <numbers>

namespace tilewright {

namespace {

constexpr MainLoop::Interval frame{16};
/// What is left of the way, and of the speed, when nobody sees the difference any more.
constexpr double restDistance = 0.002;
constexpr double restVelocity = 0.02;

} // namespace

Spring::State Spring::advanced(State from, double target, double seconds) const {
    if (response <= 0)
        return {target, 0};
    const double frequency = 2 * std::numbers::pi / response;
    const double distance = from.value - target;
    const double slope = from.velocity + (frequency * distance);
    const double decay = std::exp(-frequency * seconds);
    const double rest = distance + (slope * seconds);
    return {target + (rest * decay), (slope - (frequency * rest)) * decay};
}

double Spring::progress(double seconds) const {
    return advanced({0, 0}, 1, seconds).value;
}

SpringAnimation::SpringAnimation(Spring spring, double value, std::function<void(double)> onChange)
    : spring_(spring)
    , state_{value, 0}
    , target_(value)
    , onChange_(std::move(onChange)) {}

SpringAnimation::~SpringAnimation() = default;

void SpringAnimation::animateTo(double target) {
    if (target == target_)
        return;
    if (look::prefersReducedMotion()) {
        jumpTo(target);
        return;
    }
    target_ = target;
    if (isRunning())
        return;
    MainLoop& loop = Platform::current().mainLoop;
    lastStep_ = loop.now();
    timer_ = ScopedTimer(loop.scheduleRepeating(frame, [this] { step(); }));
}

void SpringAnimation::jumpTo(double value) {
    timer_.reset();
    target_ = value;
    state_ = {value, 0};
    onChange_(value);
}

void SpringAnimation::step() {
    const MainLoop::Interval now = Platform::current().mainLoop.now();
    const std::chrono::duration<double> elapsed = now - lastStep_;
    lastStep_ = now;
    state_ = spring_.advanced(state_, target_, elapsed.count());
    if (std::abs(state_.value - target_) < restDistance &&
        std::abs(state_.velocity) < restVelocity) {
        finish();
        return;
    }
    onChange_(state_.value);
}

} // namespace tilewright
