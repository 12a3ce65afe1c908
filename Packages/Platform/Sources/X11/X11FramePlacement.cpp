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
    // One that is too large for its place may have been pushed back on the screen.
    return outer.size() == agreedSize(facts) &&
           (outer.topLeft() == goal_.topLeft() || outer.contains(goal_));
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
        manners_->corner = {};
        return true;
    }
    const bool isWithinDecorations = offset.x() >= 0 && offset.x() <= facts.decorations.left &&
                                     offset.y() >= 0 && offset.y() <= facts.decorations.top;
    if (!isWithinDecorations)
        return false;
    manners_->corner = {facts.decorations, offset};
    return true;
}

X11FramePlacement::Action X11FramePlacement::begin(const X11WindowFacts& facts) {
    return isPinned(facts) ? clear(facts) : ask(facts);
}

X11FramePlacement::Action X11FramePlacement::windowChanged(const X11WindowFacts& facts) {
    if (phase_ == Phase::finished)
        return {};
    if (phase_ == Phase::following)
        return follow(facts);
    if (phase_ == Phase::clearing)
        return isPinned(facts) ? Action{} : ask(facts);
    if (isPinned(facts))
        return mayAskAgain() ? clear(facts) : Action{};
    // A window loses or gains decorations a moment after its states: what was asked for then is
    // wrong by their difference, and no time need pass to know it.
    if (isOutdated(facts) && !isReached(facts) && corrections_ < mostCorrections) {
        ++corrections_;
        return request(facts);
    }
    return {};
}

X11FramePlacement::Action X11FramePlacement::timePassed(const X11WindowFacts& facts) {
    if (phase_ == Phase::finished)
        return {};
    if (phase_ == Phase::following)
        return finish(facts);
    if (phase_ == Phase::clearing)
        return ask(facts);
    const QRect outer = facts.outerFrame();
    if (isReached(facts) && !isPinned(facts)) {
        remember(outer);
        return finish(facts);
    }
    // It listens again, and the hint is the better way.
    if (way_ == Way::configure && outer != origin_ && canChangeWay(outer))
        return askTheOtherWay(facts);
    // One that has not stirred may not have been heard: only where it went somewhere twice is that
    // the window manager's answer.
    const bool isAgreed = lastMiss_ == outer && outer != origin_;
    if (!mayAskAgain() || isAgreed)
        return canChangeWay(outer) ? askTheOtherWay(facts) : finish(facts);
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
    hasChangedMaximized_ = hasChangedMaximized_ || facts.isMaximized;
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
    hasChangedMaximized_ = hasChangedMaximized_ || action.addsMaximized;
    return action;
}

bool X11FramePlacement::canChangeWay(const QRect& outer) const {
    const bool isFirst = changesOfWay_ == 0;
    if (way_ == Way::hint)
        return isFirst && outer == origin_;
    return manners_->announcesHint && changesOfWay_ < mostChangesOfWay &&
           (isFirst || outer != origin_);
}

X11FramePlacement::Action X11FramePlacement::askTheOtherWay(const X11WindowFacts& facts) {
    ++changesOfWay_;
    way_ = way_ == Way::hint ? Way::configure : Way::hint;
    attempts_ = 1;
    return isPinned(facts) ? clear(facts) : ask(facts);
}

void X11FramePlacement::remember(const QRect& outer) {
    if (outer == origin_)
        return;
    manners_->isHintHeard = manners_->isHintHeard || way_ == Way::hint;
    manners_->way = manners_->isHintHeard ? Way::hint : way_;
}

X11FramePlacement::Action X11FramePlacement::request(const X11WindowFacts& facts) {
    askedWithDecorations_ = facts.decorations;
    askedWithShadow_ = facts.shadow;
    Action action;
    action.request = QRect(goal_.topLeft(), facts.clientSize(goal_.size()).expandedTo({1, 1}));
    // The corner is the frame's; a client that draws its own shadow reaches beyond it.
    action.request->translate(-facts.shadow.left, -facts.shadow.top);
    askedWithOffset_ =
        manners_->corner.decorations == facts.decorations ? manners_->corner.offset : QPoint();
    action.request->translate(askedWithOffset_);
    action.way = way_;
    if (way_ == Way::configure)
        action.request->translate(facts.gravityOffset());
    action.startsWaiting = true;
    return action;
}

bool X11FramePlacement::isOutdated(const X11WindowFacts& facts) const {
    return facts.decorations != askedWithDecorations_ || facts.shadow != askedWithShadow_;
}

X11FramePlacement::Action X11FramePlacement::finish(const X11WindowFacts& facts) {
    Action action;
    if (phase_ != Phase::following && hasChangedMaximized_ && facts.tellsShadow) {
        phase_ = Phase::following;
        settledClient_ = facts.client;
        action.startsFollowing = true;
        return action;
    }
    phase_ = Phase::finished;
    action.isFinished = true;
    return action;
}

X11FramePlacement::Action X11FramePlacement::follow(const X11WindowFacts& facts) {
    // Whoever moves it or maximises it by now does so on purpose.
    const bool isOurs = facts.client == settledClient_ && !isPinned(facts);
    if (!isOurs || !isOutdated(facts) || isReached(facts) || corrections_ >= mostCorrections)
        return {};
    ++corrections_;
    Action action = request(facts);
    action.startsWaiting = false;
    return action;
}

} // namespace tilewright
