#include "X11EventMonitors.h"

#include "X11Log.h"
#include "XcbXkb.h"

#include <algorithm>
#include <span>
#include <xcb/xinput.h>

namespace tilewright {
namespace {

constexpr std::uint32_t rawButtons =
    XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE;
/// While the left button is held: also motion, and keys for the sake of Escape.
constexpr std::uint32_t rawInDrag =
    rawButtons | XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS;

ModifierFlags modifierFlags(unsigned int keyMask) {
    quint32 bits = 0;
    const auto carry = [&](unsigned int mask, ModifierFlag flag) {
        if ((keyMask & mask) != 0)
            bits |= static_cast<quint32>(flag);
    };
    carry(XCB_MOD_MASK_SHIFT, ModifierFlag::shift);
    carry(XCB_MOD_MASK_CONTROL, ModifierFlag::control);
    carry(XCB_MOD_MASK_1, ModifierFlag::option);
    carry(XCB_MOD_MASK_4, ModifierFlag::command);
    return ModifierFlags(bits);
}

const char* words(EventType type) {
    switch (type) {
    case EventType::leftMouseDown:
        return "left button pressed";
    case EventType::leftMouseUp:
        return "left button released";
    case EventType::rightMouseDown:
        return "right button pressed";
    case EventType::leftMouseDragged:
        return "moved with the left button held";
    case EventType::flagsChanged:
        return "modifier keys changed";
    case EventType::otherMouseDown:
        return "another button pressed";
    }
    return "";
}

void tell(const X11InputState::Report& report) {
    const auto key = [&](ModifierFlag flag, const char* name) {
        return report.event.modifierFlags.contains(flag) ? name : "";
    };
    qCDebug(x11InputLog, "In %s: %s. Modifiers held:%s%s%s%s%s",
            report.owner == X11InputOwner::own ? "a window of this program" : "another application",
            words(report.event.type), key(ModifierFlag::control, " Control"),
            key(ModifierFlag::shift, " Shift"), key(ModifierFlag::option, " Alt"),
            key(ModifierFlag::command, " Super"),
            report.event.modifierFlags == ModifierFlags() ? " none" : "");
}

std::optional<X11InputServerState> stateFrom(const X11Reply<xcb_query_pointer_reply_t>& answer) {
    if (!answer)
        return std::nullopt;
    return X11InputServerState{(answer->mask & XCB_BUTTON_MASK_1) != 0,
                               modifierFlags(answer->mask)};
}

} // namespace

X11EventMonitors::X11EventMonitors(X11Connection& connection, X11Pointer& pointer,
                                   X11MovedWindows& movedWindows, X11FrameSetter& frames,
                                   X11OwnWindows own)
    : connection_(connection)
    , pointer_(pointer)
    , movedWindows_(movedWindows)
    , frames_(frames)
    , ownInput_(connection, std::move(own)) {}

X11EventMonitors::~X11EventMonitors() {
    stopWatching();
}

bool X11EventMonitors::isSupported(const X11Connection& connection) {
    // Clients of XInput 2.0 hear nothing during another client's grab.
    return connection.xinput().isAtLeast(2, 1) && connection.xkb().isPresent;
}

std::optional<MonitorToken> X11EventMonitors::addGlobalMonitor(EventMask mask, Handler handler) {
    return add(X11InputOwner::other, mask, std::move(handler));
}

std::optional<MonitorToken> X11EventMonitors::addLocalMonitor(EventMask mask, Handler handler) {
    return add(X11InputOwner::own, mask, std::move(handler));
}

std::optional<MonitorToken> X11EventMonitors::add(X11InputOwner owner, EventMask mask,
                                                  Handler handler) {
    if (!isSupported(connection_) || !connection_.isAlive()) {
        qCDebug(
            x11InputLog,
            "Input cannot be watched. The server offers XInput %u.%u, needed is 2.1, and %s XKB",
            connection_.xinput().majorVersion, connection_.xinput().minorVersion,
            connection_.xkb().isPresent ? "has" : "lacks");
        return std::nullopt;
    }
    const MonitorToken token{++lastToken_};
    monitors_.emplace(token,
                      std::make_shared<const Monitor>(Monitor{owner, mask, std::move(handler)}));
    startWatching();
    return token;
}

void X11EventMonitors::removeMonitor(MonitorToken token) {
    monitors_.erase(token);
    if (monitors_.empty())
        stopWatching();
}

void X11EventMonitors::startWatching() {
    if (isWatching_)
        return;
    isWatching_ = true;
    const std::uint8_t xinput = connection_.xinput().majorOpcode;
    for (const int number : {XCB_INPUT_RAW_BUTTON_PRESS, XCB_INPUT_RAW_BUTTON_RELEASE,
                             XCB_INPUT_RAW_MOTION, XCB_INPUT_RAW_KEY_PRESS}) {
        const auto filter = X11EventFilter::generic(xinput, static_cast<std::uint16_t>(number));
        listeners_.push_back(
            connection_.listen(filter, [this](const auto& event) { handleRaw(event); }));
    }
    listeners_.push_back(connection_.listen(X11EventFilter::type(connection_.xkb().firstEvent),
                                            [this](const auto& event) { handleKeyboard(event); }));
    listeners_.push_back(connection_.listen(
        X11EventFilter::type(XCB_MAPPING_NOTIFY), [this](const xcb_generic_event_t& event) {
            if (eventAs<xcb_mapping_notify_event_t>(event).request == XCB_MAPPING_POINTER)
                readButtonMapping();
        }));
    settling_ = QObject::connect(&connection_, &X11Connection::eventsDispatched, &connection_,
                                 [this] { askServer(); });
    catchingUp_ =
        QObject::connect(&connection_, &X11Connection::answersAgain, &connection_, [this] {
            readButtonMapping();
            readEscapeKeys();
            hasNews_ = true;
            askServer();
        });
    selectKeyboardEvents(true);
    selectRawEvents(rawButtons);
    readButtonMapping();
    readEscapeKeys();
    ownInput_.notePress();
    ownInput_.ask();
    const auto pointer = connection_.reply<xcb_query_pointer_reply_t>(
        xcb_query_pointer(connection_.xcb(), connection_.root()));
    state_.start(stateFrom(pointer).value_or(X11InputServerState{}),
                 ownInput_.take(pointer.get()).pointer);
    followLeftButton();
}

void X11EventMonitors::stopWatching() {
    if (!isWatching_)
        return;
    isWatching_ = false;
    hasNews_ = false;
    answer_.reset();
    keyboardMapping_.reset();
    ownInput_.reset();
    QObject::disconnect(settling_);
    QObject::disconnect(catchingUp_);
    listeners_.clear();
    selectKeyboardEvents(false);
    selectRawEvents(0);
    movedWindows_.setHeld(false);
    frames_.lookedAhead();
    connection_.flush();
}

void X11EventMonitors::followLeftButton() {
    selectRawEvents(state_.isLeftButtonDown() ? rawInDrag : rawButtons);
    movedWindows_.setHeld(state_.isLeftButtonDown());
}

void X11EventMonitors::selectRawEvents(std::uint32_t mask) {
    if (mask == selectedRawEvents_)
        return;
    selectedRawEvents_ = mask;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, mask};
    xcb_input_xi_select_events(connection_.xcb(), connection_.root(), 1, &selection.head);
}

void X11EventMonitors::selectKeyboardEvents(bool isWanted) {
    xcb_xkb_select_events_details_t details{};
    details.affectState = XCB_XKB_STATE_PART_MODIFIER_STATE;
    details.stateDetails = isWanted ? XCB_XKB_STATE_PART_MODIFIER_STATE : 0;
    // Clients that know this extension hear so of another layout.
    constexpr std::uint16_t layout =
        XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY;
    xcb_xkb_select_events_aux(connection_.xcb(), XCB_XKB_ID_USE_CORE_KBD,
                              XCB_XKB_EVENT_TYPE_STATE_NOTIFY | layout, isWanted ? 0 : layout,
                              isWanted ? layout : 0, XCB_XKB_MAP_PART_KEY_SYMS,
                              isWanted ? XCB_XKB_MAP_PART_KEY_SYMS : 0, &details);
}

void X11EventMonitors::handleRaw(const xcb_generic_event_t& event) {
    const auto& raw = eventAs<xcb_input_raw_button_press_event_t>(event);
    switch (raw.event_type) {
    case XCB_INPUT_RAW_BUTTON_PRESS: {
        const bool wasDown = state_.isLeftButtonDown();
        state_.pressed(raw.detail);
        if (!wasDown && state_.isLeftButtonDown())
            movedWindows_.begin();
        // Wheels are pressed too, and are nothing to tell of.
        if (state_.needsOwners())
            ownInput_.notePress();
        break;
    }
    case XCB_INPUT_RAW_BUTTON_RELEASE: {
        const bool wasDown = state_.isLeftButtonDown();
        state_.released(raw.detail);
        // What a frame for the dragged window needs to know comes along with the answer that is
        // waited for anyway.
        if (wasDown && !state_.isLeftButtonDown())
            frames_.lookAhead();
        break;
    }
    case XCB_INPUT_RAW_KEY_PRESS:
        if (std::find(escapeKeys_.begin(), escapeKeys_.end(), raw.detail) == escapeKeys_.end())
            return;
        state_.escapePressed();
        break;
    default:
        state_.moved();
        break;
    }
    hasNews_ = true;
}

void X11EventMonitors::handleKeyboard(const xcb_generic_event_t& event) {
    const auto& notice = eventAs<xcb_xkb_state_notify_event_t>(event);
    if (notice.xkbType != XCB_XKB_STATE_NOTIFY) {
        readEscapeKeys();
        return;
    }
    state_.modifiersChanged(modifierFlags(notice.mods));
    hasNews_ = true;
}

void X11EventMonitors::askServer() {
    if (!hasNews_ || answer_.isAwaited())
        return;
    // What moves after a press must not be missed while the answer is on its way.
    if (state_.isLeftButtonDown())
        selectRawEvents(rawInDrag);
    if (state_.needsOwners())
        ownInput_.ask();
    answer_ = connection_.whenAnswered<xcb_query_pointer_reply_t>(
        xcb_query_pointer(connection_.xcb(), connection_.root()),
        [this](const auto& answer) { settle(answer); });
}

void X11EventMonitors::settle(const X11Reply<xcb_query_pointer_reply_t>& answer) {
    // All that the server told before it answered has been heard by now.
    hasNews_ = false;
    state_.settle(stateFrom(answer));
    if (state_.isLeftButtonDown()) {
        // Motion that follows must not be missed, whatever the handlers do first.
        followLeftButton();
        connection_.flush();
    }
    const auto reports =
        state_.takeReports(state_.needsOwners() ? ownInput_.take(answer.get()) : X11InputOwners{});
    std::optional<X11Pointer::Known> known;
    if (answer && answer->same_screen != 0)
        known.emplace(pointer_, QPoint(answer->root_x, answer->root_y));
    deliver(reports);
    frames_.lookedAhead();
    lookAhead();
    // After a release the server hears of the window's frame first.
    if (isWatching_) {
        followLeftButton();
        connection_.flush();
    }
}

void X11EventMonitors::lookAhead() {
    if (!state_.isLeftButtonDown()) {
        hasToldOfDrag_ = false;
        return;
    }
    const bool isLikely = state_.modifiers() != ModifierFlags() || movedWindows_.hasMoved();
    if (!isLikely || hasToldOfDrag_ || !isWatching_)
        return;
    hasToldOfDrag_ = true;
    if (onDragAhead_)
        onDragAhead_(pointer_.location());
}

void X11EventMonitors::deliver(const std::vector<X11InputState::Report>& reports) {
    if (reports.empty())
        return;
    // A copy: handlers add and remove monitors, and a new one hears nothing of what was before.
    const auto monitors = monitors_;
    for (const auto& report : reports) {
        const bool isMove = report.event.type == EventType::leftMouseDragged;
        // Of each drag the first move.
        if (!std::exchange(hasToldMove_, isMove) || !isMove)
            tell(report);
        for (const auto& [token, monitor] : monitors) {
            if (monitor->owner == report.owner && monitor->mask.contains(report.event.type) &&
                monitors_.contains(token))
                monitor->handler(report.event);
        }
    }
}

void X11EventMonitors::readButtonMapping() {
    const auto mapping = connection_.reply<xcb_get_pointer_mapping_reply_t>(
        xcb_get_pointer_mapping(connection_.xcb()));
    if (!mapping)
        return;
    const std::uint8_t* map = xcb_get_pointer_mapping_map(mapping.get());
    state_.setButtonMapping({map, map + xcb_get_pointer_mapping_map_length(mapping.get())});
}

void X11EventMonitors::readEscapeKeys() {
    constexpr xcb_keysym_t escape = 0xff1b;
    const xcb_setup_t* setup = xcb_get_setup(connection_.xcb());
    const std::uint8_t first = setup->min_keycode;
    keyboardMapping_ = connection_.whenAnswered<xcb_get_keyboard_mapping_reply_t>(
        xcb_get_keyboard_mapping(connection_.xcb(), first,
                                 static_cast<std::uint8_t>(setup->max_keycode - first + 1)),
        [this, first](const auto& answer) {
            escapeKeys_.clear();
            if (!answer || answer->keysyms_per_keycode == 0)
                return;
            const std::span keysyms(
                xcb_get_keyboard_mapping_keysyms(answer.get()),
                static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(answer.get())));
            for (std::size_t i = 0; i < keysyms.size(); ++i) {
                if (keysyms[i] == escape)
                    escapeKeys_.push_back(
                        static_cast<std::uint8_t>(first + i / answer->keysyms_per_keycode));
            }
        });
}

} // namespace tilewright
