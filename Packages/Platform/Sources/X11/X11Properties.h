#pragma once

#include "X11Connection.h"

#include <QByteArray>
#include <cstdint>
#include <vector>

namespace tilewright {

/// Asks for a window's property, at most `length` times 32 bits of it.
[[nodiscard]] inline xcb_get_property_cookie_t requestProperty(const X11Connection& connection,
                                                               xcb_window_t window,
                                                               xcb_atom_t property,
                                                               std::uint32_t length = 64) {
    return xcb_get_property(connection.xcb(), 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                            length);
}

[[nodiscard]] inline xcb_get_property_cookie_t requestProperty(const X11Connection& connection,
                                                               xcb_window_t window,
                                                               X11Atom property,
                                                               std::uint32_t length = 64) {
    return requestProperty(connection, window, connection.atom(property), length);
}

/// The 32-bit items of a property; empty when it is missing or holds something else.
[[nodiscard]] std::vector<std::uint32_t> itemsOf(const xcb_get_property_reply_t* reply);
/// The bytes of a property of 8-bit items; empty when it is missing or holds something else.
[[nodiscard]] QByteArray bytesOf(const xcb_get_property_reply_t* reply);

/// Waits for the property and answers its 32-bit items.
[[nodiscard]] std::vector<std::uint32_t> takeItems(X11Connection& connection,
                                                   xcb_get_property_cookie_t cookie);
/// Waits for the property and answers its bytes.
[[nodiscard]] QByteArray takeBytes(X11Connection& connection, xcb_get_property_cookie_t cookie);

/// Sends a client message about `window` to the root window, to where window managers listen.
void sendToWindowManager(X11Connection& connection, xcb_window_t window, X11Atom type,
                         const std::array<std::uint32_t, 5>& data);

} // namespace tilewright
