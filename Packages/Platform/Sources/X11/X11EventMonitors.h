#pragma once

#include "X11Connection.h"
#include "X11FrameSetter.h"
#include "X11MovedWindows.h"
#include "X11OwnInput.h"
#include "X11Pointer.h"

#include <Platform/EventMonitors.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace tilewright {

/// Input of the whole X screen, by raw events of XInput 2 and state notices of XKB: both arrive
/// while a window manager or another program holds a grab.
///
/// Without a monitor nothing is selected; motion only while the left button is held. Several moves
/// that wait together are one dragged event. Events are handed out once the server has said how
/// keys, buttons and pointer stand after them, however long it takes: while a handler runs, the
/// pointer is where that answer has it, and nobody asks again. Nothing of this is waited for, but
/// for presses where a window of this application lies (`X11OwnInput`). Monitors are refused where
/// the server lacks what is needed.
///
/// Of the keyboard it hears the modifier keys, and while the left button is held also the other
/// ones, of which it looks for Escape alone and keeps nothing.
class X11EventMonitors final : public EventMonitors {
public:
    /// The arguments but the last have to outlive the monitors. Those of the windows that move are
    /// told of the left button; the frames, of its release, before those that may set one.
    X11EventMonitors(X11Connection& connection, X11Pointer& pointer, X11MovedWindows& movedWindows,
                     X11FrameSetter& frames, X11OwnWindows own);
    ~X11EventMonitors() override;

    std::optional<MonitorToken> addGlobalMonitor(EventMask mask, Handler handler) override;
    std::optional<MonitorToken> addLocalMonitor(EventMask mask, Handler handler) override;
    void removeMonitor(MonitorToken token) override;

    /// Registers the one listener that hears, and where the pointer is, when a window is likely to
    /// be dragged with a modifier key held, now or soon: the left button is down, and with it such
    /// a key, or a window has moved since. Once for each press at most, after the monitors, and
    /// only while there are any.
    void onDragAhead(std::function<void(AppKitPoint)> callback) {
        onDragAhead_ = std::move(callback);
    }

    /// Whether the server tells of input in the way needed here: monitors are had only where it
    /// does.
    [[nodiscard]] static bool isSupported(const X11Connection& connection);

private:
    struct Monitor {
        X11InputOwner owner;
        EventMask mask;
        Handler handler;
    };

    std::optional<MonitorToken> add(X11InputOwner owner, EventMask mask, Handler handler);
    void startWatching();
    void stopWatching();
    /// Hears more while the left button is held.
    void followLeftButton();
    void selectRawEvents(std::uint32_t mask);
    void selectKeyboardEvents(bool isWanted);
    void handleRaw(const xcb_generic_event_t& event);
    void handleKeyboard(const xcb_generic_event_t& event);
    void askServer();
    void settle(const X11Reply<xcb_query_pointer_reply_t>& answer);
    void deliver(const std::vector<X11InputState::Report>& reports);
    void lookAhead();
    void readButtonMapping();
    void readEscapeKeys();

    X11Connection& connection_;
    X11Pointer& pointer_;
    X11MovedWindows& movedWindows_;
    X11FrameSetter& frames_;
    X11OwnInput ownInput_;
    X11InputState state_;
    std::map<MonitorToken, std::shared_ptr<const Monitor>> monitors_;
    std::vector<X11Listener> listeners_;
    QMetaObject::Connection settling_;
    QMetaObject::Connection catchingUp_;
    std::function<void(AppKitPoint)> onDragAhead_;
    std::uint32_t selectedRawEvents_ = 0;
    quint64 lastToken_ = 0;
    bool isWatching_ = false;
    bool hasNews_ = false;
    /// What was handed out last was a move.
    bool hasToldMove_ = false;
    bool hasToldOfDrag_ = false;
    X11AwaitedReply answer_;
    /// The codes of the keys that bear Escape.
    std::vector<std::uint8_t> escapeKeys_;
    X11AwaitedReply keyboardMapping_;
};

} // namespace tilewright
