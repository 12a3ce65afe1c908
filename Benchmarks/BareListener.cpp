#include "BareListener.h"

#include <array>
#include <cstdlib>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>
#include <xcb/xinput.h>

BareListener::BareListener(const char* display, std::uint32_t events, std::function<void()> hear)
    : connection_(xcb_connect(display, nullptr))
    , stop_(eventfd(0, EFD_CLOEXEC))
    , hear_(std::move(hear)) {
    // Clients of XInput 2.0 hear nothing during a window manager's grab.
    std::free(xcb_input_xi_query_version_reply(
        connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr));
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, events};
    xcb_input_xi_select_events(connection_,
                               xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root, 1,
                               &selection.head);
    xcb_flush(connection_);
    thread_ = std::thread([this] { listen(); });
}

BareListener::~BareListener() {
    static_cast<void>(eventfd_write(stop_, 1));
    thread_.join();
    close(stop_);
    xcb_disconnect(connection_);
}

void BareListener::listen() {
    std::array<pollfd, 2> sources{pollfd{xcb_get_file_descriptor(connection_), POLLIN, 0},
                                  pollfd{stop_, POLLIN, 0}};
    while (true) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
            const bool isGeneric = (event->response_type & 0x7f) == XCB_GE_GENERIC;
            std::free(event);
            if (isGeneric)
                hear_();
        }
        if (poll(sources.data(), sources.size(), -1) < 0 || sources[1].revents != 0 ||
            xcb_connection_has_error(connection_) != 0)
            return;
    }
}
