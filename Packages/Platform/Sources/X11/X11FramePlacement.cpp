#include "X11FramePlacement.h"

#include <utility>

namespace tilewright {
namespace {

bool isPinned(const X11WindowFacts& facts) {
    return facts.isMaximized || facts.isFullscreen || facts.isShaded;
}

} // namespace

bool X11FramePlacement::isReached(const X11WindowFacts& facts) const {
    const QRect outer = facts.outerFrame();
    if (outer == goal_)
        return true;
    return outer.topLeft() == goal_.topLeft() && outer.size() == agreedSize(facts);
}

QSize X11FramePlacement::agreedSize(const X11WindowFacts& facts) const {
    return facts.outerSize(facts.limits.constrained(facts.clientSize(goal_.size())));
}

bool X11FramePlacement::learnCornerOffset(const X11WindowFacts& facts) {
    const QRect outer = facts.outerFrame();
    const QPoint offset = goal_.topLeft() - outer.topLeft();
    if (offset.isNull() || (outer.size() != goal_.size() && outer.size() != agreedSize(facts)))
        return false;
    if (!askedWithOffset_.isNull()) {
        // Whatever was learnt no longer leads to the goal: it may have been an accident, such as a
        // panel that came up at that moment.
        *cornerOffset_ = {};
        return true;
    }
    const bool isWithinDecorations = offset.x() >= 0 && offset.x() <= facts.decorations.left &&
                                     offset.y() >= 0 && offset.y() <= facts.decorations.top;
    if (!isWithinDecorations)
        return false;
    *cornerOffset_ = {facts.decorations, offset};
    return true;
}

X11FramePlacement::Action X11FramePlacement::begin(const X11WindowFacts& facts) {
    return isPinned(facts) ? clear(facts) : ask(facts);
}

X11FramePlacement::Action X11FramePlacement::windowChanged(const X11WindowFacts& facts) {
    if (phase_ == Phase::finished)
        return {};
    if (phase_ == Phase::clearing)
        return isPinned(facts) ? Action{} : ask(facts);
    if (isPinned(facts))
        return mayAskAgain() ? clear(facts) : Action{};
    // A window loses or gains decorations a moment after its states: what was asked for then is
    // wrong by their difference, and no time need pass to know it.
    const bool isOutdated =
        facts.decorations != askedWithDecorations_ || facts.shadow != askedWithShadow_;
    if (isOutdated && !isReached(facts) && corrections_ < mostCorrections) {
        ++corrections_;
        return request(facts);
    }
    return {};
}

X11FramePlacement::Action X11FramePlacement::timePassed(const X11WindowFacts& facts) {
    if (phase_ == Phase::finished)
        return {};
    if (phase_ == Phase::clearing)
        return ask(facts);
    if (isReached(facts) && !isPinned(facts))
        return finish();
    const QRect outer = facts.outerFrame();
    // One that has not stirred may not have been heard: only where it went somewhere twice is that
    // the window manager's answer.
    const bool isAgreed = lastMiss_ == outer && outer != origin_;
    if (!mayAskAgain() || isAgreed)
        return finish();
    lastMiss_ = outer;
    if (!isPinned(facts) && learnCornerOffset(facts)) {
        ++attempts_;
        return request(facts);
    }
    return isPinned(facts) ? clear(facts) : ask(facts);
}

X11FramePlacement::Action X11FramePlacement::clear(const X11WindowFacts& facts) {
    phase_ = Phase::clearing;
    Action action;
    action.removesMaximized = facts.isMaximized;
    action.removesFullscreen = facts.isFullscreen;
    action.removesShaded = facts.isShaded;
    action.startsWaiting = true;
    return action;
}

X11FramePlacement::Action X11FramePlacement::ask(const X11WindowFacts& facts) {
    phase_ = Phase::settling;
    ++attempts_;
    if (!origin_)
        origin_ = facts.outerFrame();
    Action action = request(facts);
    // Where the window manager tiles upon the very release that led here, its state shows only
    // after this; and where time alone did not help, the window may be tiled without any.
    action.removesMaximized = tiling_ == Tiling::likely || isPinned(facts) || attempts_ > 1;
    action.addsMaximized = lastMiss_.has_value() && !std::exchange(hasAddedMaximized_, true);
    return action;
}

X11FramePlacement::Action X11FramePlacement::request(const X11WindowFacts& facts) {
    askedWithDecorations_ = facts.decorations;
    askedWithShadow_ = facts.shadow;
    Action action;
    action.request = QRect(goal_.topLeft(), facts.clientSize(goal_.size()).expandedTo({1, 1}));
    // The corner is the frame's; a client that draws its own shadow reaches beyond it.
    action.request->translate(-facts.shadow.left, -facts.shadow.top);
    askedWithOffset_ =
        cornerOffset_->decorations == facts.decorations ? cornerOffset_->offset : QPoint();
    action.request->translate(askedWithOffset_);
    action.startsWaiting = true;
    return action;
}

X11FramePlacement::Action X11FramePlacement::finish() {
    phase_ = Phase::finished;
    Action action;
    action.isFinished = true;
    return action;
}

} // namespace tilewright
