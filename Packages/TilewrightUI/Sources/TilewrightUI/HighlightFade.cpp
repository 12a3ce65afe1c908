#include "HighlightFade.h"

#include <QEasingCurve>
#include <QPointF>

namespace tilewright {

namespace {

/// The usual ease-out curve of user interfaces: off at full speed, in slowly.
double easeOut(double progress) {
    static const QEasingCurve curve = [] {
        QEasingCurve bezier(QEasingCurve::BezierSpline);
        bezier.addCubicBezierSegment(QPointF(0, 0), QPointF(0.58, 1), QPointF(1, 1));
        return bezier;
    }();
    return curve.valueForProgress(progress);
}

} // namespace

void HighlightFade::start(bool highlighted, Time now) {
    if (highlighted == isHighlighted_)
        return;
    isHighlighted_ = highlighted;
    origin_ = value_;
    startedAt_ = now;
    isRunning_ = true;
    advance(now);
}

void HighlightFade::advance(Time now) {
    if (!isRunning_)
        return;
    const Time elapsed = now - startedAt_;
    if (elapsed >= duration) {
        finish(isHighlighted_);
        return;
    }
    // One frame ahead, so that the frame drawn at the start shows a change already: the pointer's
    // move is answered without waiting for the next tick, and the end is still reached on time.
    const double progress = static_cast<double>((elapsed + frame).count()) /
                            static_cast<double>((duration + frame).count());
    const double target = isHighlighted_ ? 1 : 0;
    value_ = origin_ + ((target - origin_) * easeOut(progress));
}

void HighlightFade::finish(bool highlighted) {
    isHighlighted_ = highlighted;
    isRunning_ = false;
    value_ = highlighted ? 1 : 0;
}

} // namespace tilewright
