#include "BareFrameRequest.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

std::vector<std::uint32_t> take(xcb_connection_t* connection, xcb_get_property_cookie_t cookie) {
    const std::unique_ptr<xcb_get_property_reply_t, Free> reply(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* items = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {items, items + reply->value_len};
}

} // namespace

BareFrameRequest::BareFrameRequest(const char* display, std::uint32_t window)
    : connection_(xcb_connect(display, nullptr))
    , window_(window) {
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    supportingCheck_ = atom("_NET_SUPPORTING_WM_CHECK");
    managedState_ = atom("WM_STATE");
    states_ = atom("_NET_WM_STATE");
    maximizedHorizontally_ = atom("_NET_WM_STATE_MAXIMIZED_HORZ");
    maximizedVertically_ = atom("_NET_WM_STATE_MAXIMIZED_VERT");
    fullscreen_ = atom("_NET_WM_STATE_FULLSCREEN");
    shaded_ = atom("_NET_WM_STATE_SHADED");
    decorations_ = atom("_NET_FRAME_EXTENTS");
    shadow_ = atom("_GTK_FRAME_EXTENTS");
    moveResize_ = atom("_NET_MOVERESIZE_WINDOW");
    const auto manager = take(connection_, ask(root_, supportingCheck_));
    manager_ = manager.empty() ? 0 : manager[0];
}

BareFrameRequest::~BareFrameRequest() {
    xcb_disconnect(connection_);
}

xcb_atom_t BareFrameRequest::atom(const char* name) const {
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(xcb_intern_atom_reply(
        connection_,
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr));
    return reply ? reply->atom : 0;
}

xcb_get_property_cookie_t BareFrameRequest::ask(xcb_window_t window, xcb_atom_t property) const {
    return xcb_get_property(connection_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 64);
}

bool BareFrameRequest::set(const BareFrame& outer) {
    const auto checkCookie = ask(manager_, supportingCheck_);
    const auto managedCookie = ask(window_, managedState_);
    const auto statesCookie = ask(window_, states_);
    const auto decorationsCookie = ask(window_, decorations_);
    const auto shadowCookie = ask(window_, shadow_);
    const auto check = take(connection_, checkCookie);
    const auto managed = take(connection_, managedCookie);
    const auto states = take(connection_, statesCookie);
    auto decorations = take(connection_, decorationsCookie);
    auto shadow = take(connection_, shadowCookie);
    const bool isPinned = std::any_of(states.begin(), states.end(), [&](std::uint32_t state) {
        return state == maximizedHorizontally_ || state == maximizedVertically_ ||
               state == fullscreen_ || state == shaded_;
    });
    if (check.empty() || check[0] != manager_ || managed.empty() || isPinned)
        return false;
    decorations.resize(4);
    shadow.resize(4);

    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window_;
    message.type = moveResize_;
    constexpr std::uint32_t northWest = 1;
    constexpr std::uint32_t allFour = 0xFU << 8U;
    constexpr std::uint32_t fromUser = 2U << 12U;
    message.data.data32[0] = northWest | allFour | fromUser;
    message.data.data32[1] = static_cast<std::uint32_t>(outer.x) - shadow[0];
    message.data.data32[2] = static_cast<std::uint32_t>(outer.y) - shadow[2];
    message.data.data32[3] = static_cast<std::uint32_t>(outer.width) + shadow[0] + shadow[1] -
                             decorations[0] - decorations[1];
    message.data.data32[4] = static_cast<std::uint32_t>(outer.height) + shadow[2] + shadow[3] -
                             decorations[2] - decorations[3];
    xcb_send_event(connection_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   static_cast<const char*>(static_cast<const void*>(&message)));
    xcb_flush(connection_);
    return true;
}
