#include "X11Properties.h"

#include <algorithm>

namespace tilewright {

std::vector<std::uint32_t> itemsOf(const xcb_get_property_reply_t* reply) {
    if (!reply || reply->format != 32)
        return {};
    const auto* items = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
    const auto count = static_cast<std::size_t>(xcb_get_property_value_length(reply)) / 4;
    return {items, items + count};
}

QByteArray bytesOf(const xcb_get_property_reply_t* reply) {
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply)),
            xcb_get_property_value_length(reply)};
}

std::vector<std::uint32_t> takeItems(X11Connection& connection, xcb_get_property_cookie_t cookie) {
    return itemsOf(connection.reply<xcb_get_property_reply_t>(cookie).get());
}

QByteArray takeBytes(X11Connection& connection, xcb_get_property_cookie_t cookie) {
    return bytesOf(connection.reply<xcb_get_property_reply_t>(cookie).get());
}

void sendToWindowManager(X11Connection& connection, xcb_window_t window, X11Atom type,
                         const std::array<std::uint32_t, 5>& data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection.atom(type);
    std::copy(data.begin(), data.end(), message.data.data32);
    xcb_send_event(connection.xcb(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   static_cast<const char*>(static_cast<const void*>(&message)));
}

} // namespace tilewright
