#include "CompanionState.h"

#include "CompanionDecoder.h"

#include <algorithm>
#include <utility>

namespace tilewright {

namespace {

/// Nobody works in more windows at a time.
constexpr std::size_t mostWindows = 64;

/// Moves, or puts, an item to the front of a list that grows no further than its bound.
template<class Item, class IsSame>
void putFirst(std::vector<Item>& list, Item item, IsSame isSame) {
    std::erase_if(list, isSame);
    list.insert(list.begin(), std::move(item));
    if (list.size() > mostWindows)
        list.pop_back();
}

} // namespace

CompanionState::CompanionState() = default;
CompanionState::~CompanionState() = default;

void CompanionState::take(const CompanionMessage& message) {
    if (isConnected_ || std::holds_alternative<CompanionHello>(message))
        std::visit([this](const auto& told) { hear(told); }, message);
}

void CompanionState::lose() {
    cancelDrag();
    windows_.clear();
    active_.clear();
    lastSerial_ = 0;
    tellKeys({}, false);
    if (std::exchange(isConnected_, false))
        Q_EMIT connectedChanged();
}

void CompanionState::hear(const CompanionHello& hello) {
    if (hello.protocol != CompanionDecoder::protocol) {
        lose();
        return;
    }
    cancelDrag();
    windows_.clear();
    active_.clear();
    lastSerial_ = 0;
    shell_ = hello.shell;
    reducedMotion_ = hello.reducedMotion;
    displays_ = hello.displays;
    pointer_ = hello.pointer;
    if (hello.focus)
        noteActive(*hello.focus);
    doesCompanionTellKeys_ = hello.tellsKeys;
    const bool wasConnected = std::exchange(isConnected_, true);
    Q_EMIT displaysChanged();
    Q_EMIT greeted();
    if (!wasConnected)
        Q_EMIT connectedChanged();
    Q_EMIT keySourceChanged();
    Q_EMIT reducedMotionTold();
    Q_EMIT focusChanged();
    hearKeys(hello.keys, false);
}

void CompanionState::hear(const CompanionDisplays& message) {
    displays_ = message.displays;
    Q_EMIT displaysChanged();
}

void CompanionState::hear(const CompanionFocus& message) {
    // The desktop itself has the focus now and then: the user still works in the same window.
    if (!message.window)
        return;
    noteActive(*message.window);
    Q_EMIT focusChanged();
}

void CompanionState::hear(const CompanionMotionWish& message) {
    reducedMotion_ = message.isReduced;
    Q_EMIT reducedMotionTold();
}

void CompanionState::hear(const CompanionDrag& message) {
    using Step = CompanionDrag::Step;
    if (message.step == Step::begin) {
        begin(message);
        return;
    }
    if (!drag_ || drag_->serial != message.serial)
        return;
    const bool isOurs = drag_->isOurs;
    if (message.step == Step::cancellation) {
        pointer_ = message.pointer;
        cancelDrag();
        return;
    }
    if (message.window.id == drag_->window)
        note(message.window);
    const bool hasMoved = std::exchange(pointer_, message.pointer) != message.pointer;
    hearKeys(message.keys, isOurs);
    if (hasMoved && drag_) {
        drag_->hasMoved = true;
        Q_EMIT input({EventType::leftMouseDragged, keys_}, isOurs);
    }
    if (message.step == Step::drop && drag_) {
        Q_EMIT input({EventType::leftMouseUp, keys_}, isOurs);
        drag_.reset();
    }
}

void CompanionState::begin(const CompanionDrag& message) {
    // One that comes late, or a second time.
    if (message.serial <= lastSerial_)
        return;
    cancelDrag();
    lastSerial_ = message.serial;
    drag_ = Drag{message.serial, message.window.id, message.window.isOurs};
    note(message.window);
    pointer_ = message.pointer;
    hearKeys(message.keys, message.window.isOurs);
}

void CompanionState::setKeys(std::optional<ModifierFlags> keys) {
    const bool hadKeys = hasKeys();
    keysOfOthers_ = keys;
    if (hadKeys != hasKeys())
        Q_EMIT keySourceChanged();
    // Between drags nobody asks.
    if (!drag_)
        return;
    const ModifierFlags before = keys_;
    tellKeys(keys.value_or(ModifierFlags()), drag_->isOurs);
    // Keys and motions come on two ways: the motion told last may be one that followed the press,
    // and the hand may rest since.
    const bool isPress = (keys_.bits() & ~before.bits()) != 0;
    if (isPress && drag_ && drag_->hasMoved)
        Q_EMIT input({EventType::leftMouseDragged, keys_}, drag_->isOurs);
}

void CompanionState::cancelDrag() {
    if (!drag_)
        return;
    // Nothing is snapped where no key is held.
    const bool isOurs = drag_->isOurs;
    tellKeys({}, isOurs);
    Q_EMIT input({EventType::leftMouseUp, {}}, isOurs);
    drag_.reset();
}

void CompanionState::tellKeys(ModifierFlags keys, bool isOurs) {
    if (std::exchange(keys_, keys) != keys)
        Q_EMIT input({EventType::flagsChanged, keys}, isOurs);
}

void CompanionState::hear(const CompanionFrameSettled& message) {
    if (auto settled = window(message.window)) {
        settled->frame = message.frame;
        note(*settled);
    }
}

void CompanionState::hear(const CompanionItemClick& message) {
    pointer_ = message.pointer;
    Q_EMIT itemClicked(message.item);
}

void CompanionState::hear(const CompanionPanelAwaited& /*message*/) {
    Q_EMIT panelAwaited();
}

void CompanionState::hear(const CompanionPressOutside& message) {
    Q_EMIT pressedOutside(message.isOverview);
}

void CompanionState::hear(const CompanionPointerPlace& message) {
    pointer_ = message.pointer;
    Q_EMIT pointerTold();
}

void CompanionState::hear(const CompanionGone& message) {
    if (drag_ && drag_->window == message.window)
        cancelDrag();
    std::erase_if(windows_, [&](const auto& window) { return window.id == message.window; });
    std::erase(active_, message.window);
    Q_EMIT focusChanged();
}

void CompanionState::hear(const CompanionPoll& /*message*/) {}

void CompanionState::note(const CompanionWindow& window) {
    putFirst(windows_, window, [&](const CompanionWindow& other) { return other.id == window.id; });
}

void CompanionState::noteActive(const CompanionWindow& window) {
    note(window);
    putFirst(active_, window.id, [&](CompanionWindowID other) { return other == window.id; });
}

std::optional<CompanionWindow> CompanionState::window(CompanionWindowID id) const {
    const auto found = std::find_if(windows_.begin(), windows_.end(),
                                    [id](const auto& window) { return window.id == id; });
    return found == windows_.end() ? std::nullopt : std::optional(*found);
}

std::optional<CompanionWindow> CompanionState::lastActive() const {
    for (const CompanionWindowID id : active_) {
        if (const auto known = window(id); known && !known->isOurs)
            return known;
    }
    return std::nullopt;
}

std::optional<CompanionWindow> CompanionState::lastActiveOf(ProcessID process) const {
    for (const CompanionWindowID id : active_) {
        if (const auto known = window(id); known && known->process == process)
            return known;
    }
    return std::nullopt;
}

bool CompanionState::isFocusOurs() const {
    const auto focused = active_.empty() ? std::nullopt : window(active_.front());
    return focused && focused->isOurs;
}

std::optional<CompanionWindow> CompanionState::dragged() const {
    return drag_ ? window(drag_->window) : std::nullopt;
}

} // namespace tilewright
