#pragma once

#include "Waiting.h"

#include <QString>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace tilewright::testing {

/// A client that has the pointer or the keyboard for itself, as a screen locker does, until it lets
/// go of them or ends.
class InputGrab {
public:
    explicit InputGrab(const QString& display)
        : connection_(xcb_connect(display.toLatin1().constData(), nullptr))
        , root_(xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root) {}

    /// Waits until nobody else has it; false when somebody still does at the deadline.
    [[nodiscard]] bool takePointer() {
        return waitUntil([this] {
            return isGranted(xcb_grab_pointer_reply(
                connection_.get(),
                xcb_grab_pointer(connection_.get(), 0, root_, XCB_EVENT_MASK_BUTTON_PRESS,
                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE,
                                 XCB_CURRENT_TIME),
                nullptr));
        });
    }
    /// Waits until nobody else has it; false when somebody still does at the deadline.
    [[nodiscard]] bool takeKeyboard() {
        return waitUntil([this] {
            return isGranted(xcb_grab_keyboard_reply(
                connection_.get(),
                xcb_grab_keyboard(connection_.get(), 0, root_, XCB_CURRENT_TIME,
                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                nullptr));
        });
    }
    void letGo() {
        xcb_ungrab_pointer(connection_.get(), XCB_CURRENT_TIME);
        xcb_ungrab_keyboard(connection_.get(), XCB_CURRENT_TIME);
        xcb_flush(connection_.get());
    }

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    template<class Reply>
    [[nodiscard]] static bool isGranted(Reply* reply) {
        const bool isSuccess = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
        std::free(reply); // NOLINT: xcb allocates with malloc
        return isSuccess;
    }

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    xcb_window_t root_;
};

} // namespace tilewright::testing
