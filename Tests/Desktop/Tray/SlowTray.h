#pragma once

#include <XClient.h>

#include <vector>

namespace tilewright::testing {

/// A system tray that announces itself when it is told to. It notes what it is asked to take
/// in and leaves it where it is. It ends as when it crashes.
class SlowTray {
public:
    explicit SlowTray(const QString& display)
        : client_(display)
        , selection_(client_.atom("_NET_SYSTEM_TRAY_S0"))
        , window_(xcb_generate_id(client_.xcb())) {
        xcb_create_window(client_.xcb(), 0, window_, client_.root(), -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(client_.xcb(), window_, selection_, XCB_CURRENT_TIME);
        client_.sync();
    }

    void announce() {
        xcb_client_message_event_t notice{};
        notice.response_type = XCB_CLIENT_MESSAGE;
        notice.format = 32;
        notice.window = client_.root();
        notice.type = client_.atom("MANAGER");
        notice.data.data32[1] = selection_;
        notice.data.data32[2] = window_;
        xcb_send_event(client_.xcb(), 0, client_.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&notice));
        client_.sync();
    }
    /// The windows that it has been asked to take in so far.
    [[nodiscard]] const std::vector<xcb_window_t>& asked() {
        const xcb_atom_t request = client_.atom("_NET_SYSTEM_TRAY_OPCODE");
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(client_.xcb())}) {
            if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE)
                continue;
            const auto& message = *reinterpret_cast<const xcb_client_message_event_t*>(event.get());
            if (message.type == request && message.data.data32[1] == 0)
                asked_.push_back(message.data.data32[2]);
        }
        return asked_;
    }
    /// Whether the window that it was asked to take in last is still there.
    [[nodiscard]] bool isLastThere() {
        if (asked().empty())
            return false;
        const XReply<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(
            client_.xcb(), xcb_get_geometry(client_.xcb(), asked_.back()), nullptr));
        return reply != nullptr;
    }

private:
    XClient client_;
    xcb_atom_t selection_;
    xcb_window_t window_;
    std::vector<xcb_window_t> asked_;
};

} // namespace tilewright::testing
