#include "XClient.h"

#include <cstring>

namespace tilewright::testing {

XClient::XClient(const QString& display) {
    int screenNumber = 0;
    connection_.reset(xcb_connect(display.toLatin1().constData(), &screenNumber));
    if (!isConnected())
        return;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(xcb()));
    for (; screenNumber > 0; --screenNumber)
        xcb_screen_next(&screens);
    screen_ = screens.data;
}

bool XClient::isConnected() const {
    return xcb_connection_has_error(xcb()) == 0;
}

xcb_atom_t XClient::atom(const char* name) const {
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        xcb(), xcb_intern_atom(xcb(), 0, static_cast<quint16>(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

void XClient::setProperty(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                          const std::vector<quint32>& items) const {
    xcb_change_property(xcb(), XCB_PROP_MODE_REPLACE, window, property, type, 32,
                        static_cast<quint32>(items.size()), items.data());
}

void XClient::sync() const {
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(xcb(), xcb_get_input_focus(xcb()), nullptr));
}

} // namespace tilewright::testing
