#pragma once

#include "Waiting.h"
#include "XClient.h"

namespace tilewright::testing {

/// A client that has the pointer or the keyboard for itself, as a screen locker does, until it lets
/// go of them or ends.
class InputGrab {
public:
    explicit InputGrab(const QString& display)
        : client_(display) {}

    /// Waits until nobody else has it; false when somebody still does at the deadline.
    [[nodiscard]] bool takePointer() {
        return waitUntil([this] {
            return isGranted(xcb_grab_pointer_reply(
                client_.xcb(),
                xcb_grab_pointer(client_.xcb(), 0, client_.root(), XCB_EVENT_MASK_BUTTON_PRESS,
                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE,
                                 XCB_CURRENT_TIME),
                nullptr));
        });
    }
    /// Waits until nobody else has it; false when somebody still does at the deadline.
    [[nodiscard]] bool takeKeyboard() {
        return waitUntil([this] {
            return isGranted(xcb_grab_keyboard_reply(
                client_.xcb(),
                xcb_grab_keyboard(client_.xcb(), 0, client_.root(), XCB_CURRENT_TIME,
                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                nullptr));
        });
    }
    void letGo() {
        xcb_ungrab_pointer(client_.xcb(), XCB_CURRENT_TIME);
        xcb_ungrab_keyboard(client_.xcb(), XCB_CURRENT_TIME);
        xcb_flush(client_.xcb());
    }

private:
    template<class Reply>
    [[nodiscard]] static bool isGranted(Reply* reply) {
        const XReply<Reply> owned(reply);
        return owned && owned->status == XCB_GRAB_STATUS_SUCCESS;
    }

    XClient client_;
};

} // namespace tilewright::testing
