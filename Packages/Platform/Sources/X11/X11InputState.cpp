#include "X11InputState.h"

#include <algorithm>

namespace tilewright {
namespace {

constexpr quint32 leftLogicalButton = 1;
constexpr quint32 rightLogicalButton = 3;

/// Whether an event goes on with what a press began.
bool isOfDrag(EventType type) {
    return type == EventType::leftMouseDragged || type == EventType::leftMouseUp;
}

} // namespace

void X11InputState::start(const X11InputServerState& server, X11InputOwner dragOwner) {
    events_.clear();
    modifiers_ = server.modifiers;
    isLeftDown_ = server.isLeftButtonDown;
    leftButton_ = 0;
    isConfirmed_ = true;
    contradictions_ = 0;
    hasMoved_ = false;
    isCalledOff_ = false;
    dragOwner_ = dragOwner;
    wasLeftDown_ = isLeftDown_;
    toldModifiers_ = modifiers();
}

void X11InputState::pressed(quint32 button) {
    switch (const quint32 logical = logicalButton(button); logical) {
    case leftLogicalButton:
        pressedLeft(button);
        break;
    case 0:
    case 4:
    case 5:
    case 6:
    case 7:
        break;
    default:
        flushMove();
        report(logical == rightLogicalButton ? EventType::rightMouseDown
                                             : EventType::otherMouseDown);
    }
}

void X11InputState::pressedLeft(quint32 button) {
    // Two presses in a row: the release between them was never told.
    if (isLeftDown_ && leftButton_ == button)
        setLeftDown(false);
    if (!isLeftDown_)
        setLeftDown(true);
    leftButton_ = button;
    isConfirmed_ = false;
    contradictions_ = 0;
}

void X11InputState::released(quint32 button) {
    if (!isLeftDown_)
        return;
    const bool isLeft =
        leftButton_ != 0 ? leftButton_ == button : logicalButton(button) == leftLogicalButton;
    if (!isLeft)
        return;
    setLeftDown(false);
    isConfirmed_ = false;
    contradictions_ = 0;
}

void X11InputState::moved() {
    hasMoved_ = isLeftDown_;
}

void X11InputState::modifiersChanged(ModifierFlags modifiers) {
    if (modifiers == modifiers_)
        return;
    flushMove();
    modifiers_ = modifiers;
    if (!isCalledOff_)
        report(EventType::flagsChanged);
}

void X11InputState::escapePressed() {
    if (!isLeftDown_ || isCalledOff_)
        return;
    flushMove();
    isCalledOff_ = true;
    if (modifiers_ != ModifierFlags())
        report(EventType::flagsChanged);
}

void X11InputState::settle(const std::optional<X11InputServerState>& server) {
    if (!server) {
        flushMove();
        return;
    }
    const bool agrees = server->isLeftButtonDown == isLeftDown_;
    const bool overrules = !agrees && (isConfirmed_ || contradictions_ >= patience);
    // A press that the server does not count yet is no drag yet.
    if (!agrees && !isConfirmed_)
        hasMoved_ = false;
    // First the keys: were both lost, the key no longer counts for the release.
    modifiersChanged(server->modifiers);
    if (overrules)
        setLeftDown(server->isLeftButtonDown);
    isConfirmed_ = agrees || overrules;
    contradictions_ = isConfirmed_ ? 0 : contradictions_ + 1;
    flushMove();
}

bool X11InputState::needsOwners() const {
    return std::any_of(events_.begin(), events_.end(),
                       [](const Event& event) { return !isOfDrag(event.type); });
}

std::vector<X11InputState::Report> X11InputState::takeReports(const X11InputOwners& owners) {
    std::vector<Report> reports;
    reports.reserve(events_.size());
    for (const Event& event : std::exchange(events_, {})) {
        if (event.type == EventType::leftMouseDown)
            dragOwner_ = owners.pointer;
        if (event.type == EventType::flagsChanged)
            reports.push_back({event, owners.keyboard});
        else
            reports.push_back({event, isOfDrag(event.type) ? dragOwner_ : owners.pointer});
    }
    wasLeftDown_ = isLeftDown_;
    toldModifiers_ = modifiers();
    return reports;
}

quint32 X11InputState::logicalButton(quint32 button) const {
    return button == 0 || button > mapping_.size() ? button : mapping_[button - 1];
}

void X11InputState::setLeftDown(bool isDown) {
    flushMove();
    isLeftDown_ = isDown;
    leftButton_ = 0;
    report(isDown ? EventType::leftMouseDown : EventType::leftMouseUp);
    if (std::exchange(isCalledOff_, false) && modifiers_ != ModifierFlags())
        report(EventType::flagsChanged);
}

void X11InputState::report(EventType type) {
    events_.push_back({type, modifiers()});
    if (events_.size() > mostReports)
        skipAhead();
}

void X11InputState::skipAhead() {
    const auto count = [&](EventType type) {
        return std::count_if(events_.begin(), events_.end(),
                             [type](const Event& event) { return event.type == type; });
    };
    const auto lastPress = std::find_if(events_.rbegin(), events_.rend(), [](const Event& event) {
        return event.type == EventType::leftMouseDown;
    });
    const bool isMoved = std::any_of(events_.rbegin(), lastPress, [](const Event& event) {
        return event.type == EventType::leftMouseDragged;
    });
    std::vector<Event> rest;
    ModifierFlags flags = toldModifiers_;
    bool isDown = wasLeftDown_;
    const auto tell = [&](EventType type) { rest.push_back({type, flags}); };
    const auto tellKeys = [&](ModifierFlags held) {
        if (std::exchange(flags, held) != held)
            tell(EventType::flagsChanged);
    };
    // Nobody knows any more where those ended: without keys they do nothing.
    auto releases = count(EventType::leftMouseUp);
    if (isDown && releases > 0) {
        tellKeys(ModifierFlags());
        tell(EventType::leftMouseUp);
        isDown = false;
        --releases;
    }
    if (releases > 0) {
        tellKeys(ModifierFlags());
        tell(EventType::leftMouseDown);
        tell(EventType::leftMouseUp);
    }
    for (const EventType press : {EventType::rightMouseDown, EventType::otherMouseDown}) {
        if (count(press) > 0)
            tell(press);
    }
    tellKeys(modifiers());
    if (isLeftDown_ && !isDown)
        tell(EventType::leftMouseDown);
    if (isLeftDown_ && isMoved)
        tell(EventType::leftMouseDragged);
    events_ = std::move(rest);
}

void X11InputState::flushMove() {
    if (std::exchange(hasMoved_, false) && isLeftDown_)
        report(EventType::leftMouseDragged);
}

} // namespace tilewright
