#include "X11WindowManagerWatch.h"

#include "X11Properties.h"

#include <algorithm>

namespace tilewright {

X11WindowManagerWatch::X11WindowManagerWatch(X11Connection& connection,
                                             X11EventSelection& selection)
    : connection_(connection)
    , selection_(selection)
    , rootInterest_(selection.select(connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE)) {
    rootListener_ = connection_.listen(
        X11EventFilter::window(connection_.root()), [this](const xcb_generic_event_t& event) {
            if (eventType(event) != XCB_PROPERTY_NOTIFY)
                return;
            const xcb_atom_t property = eventAs<xcb_property_notify_event_t>(event).atom;
            if (property == connection_.atom(X11Atom::netSupportingWmCheck) ||
                property == connection_.atom(X11Atom::netSupported))
                refresh();
        });
    connect(&connection_, &X11Connection::answersAgain, this, &X11WindowManagerWatch::refresh);
    refresh();
}

bool X11WindowManagerWatch::supports(xcb_atom_t hint) const {
    return std::find(supported_.begin(), supported_.end(), hint) != supported_.end();
}

bool X11WindowManagerWatch::made(xcb_window_t window) const {
    // The same on every connection to a server.
    const std::uint32_t ofTheConnection = ~xcb_get_setup(connection_.xcb())->resource_id_mask;
    return isRunning() && (window & ofTheConnection) == (checkWindow_ & ofTheConnection);
}

xcb_get_property_cookie_t X11WindowManagerWatch::requestIsAlive() const {
    return requestProperty(connection_, checkWindow_, X11Atom::netSupportingWmCheck, 1);
}

bool X11WindowManagerWatch::takeIsAlive(xcb_get_property_cookie_t cookie) const {
    const auto items = takeItems(connection_, cookie);
    return isRunning() && !items.empty() && items[0] == checkWindow_;
}

void X11WindowManagerWatch::refresh() {
    const auto checkCookie =
        requestProperty(connection_, connection_.root(), X11Atom::netSupportingWmCheck, 1);
    const auto supportedCookie =
        requestProperty(connection_, connection_.root(), X11Atom::netSupported, 1024);
    const auto check = takeItems(connection_, checkCookie);
    auto supported = takeItems(connection_, supportedCookie);
    if (connection_.isStuck())
        return;

    xcb_window_t window = check.empty() ? static_cast<xcb_window_t>(XCB_NONE) : check[0];
    if (window == XCB_NONE) {
        checkInterest_.reset();
        checkListener_.reset();
    } else {
        // Listen before looking: the window manager may end in between.
        if (window != checkWindow_ || !checkInterest_.isActive())
            follow(window);
        // What a dead window manager left behind names a window that is gone, or another's; a
        // living one's may come to name itself only now.
        const auto own = takeItems(
            connection_, requestProperty(connection_, window, X11Atom::netSupportingWmCheck, 1));
        if (connection_.isStuck())
            return;
        if (own.empty() || own[0] != window)
            window = XCB_NONE;
    }
    if (window == XCB_NONE)
        supported.clear();
    if (window == checkWindow_ && supported == supported_)
        return;
    checkWindow_ = window;
    supported_ = std::move(supported);
    Q_EMIT changed();
}

void X11WindowManagerWatch::follow(xcb_window_t window) {
    // First the old wish, lest it be taken for one about this window: a number that named a window
    // that is gone may name another one by now.
    checkInterest_.reset();
    checkInterest_ =
        selection_.select(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    checkListener_ = connection_.listen(
        X11EventFilter::window(window), [this](const xcb_generic_event_t& event) {
            const bool isGone = eventType(event) == XCB_DESTROY_NOTIFY;
            const bool isNamed = eventType(event) == XCB_PROPERTY_NOTIFY &&
                                 eventAs<xcb_property_notify_event_t>(event).atom ==
                                     connection_.atom(X11Atom::netSupportingWmCheck);
            if (isGone)
                checkInterest_.reset();
            if (isGone || isNamed)
                refresh();
        });
}

} // namespace tilewright
