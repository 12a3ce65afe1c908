#include "X11InstanceActivation.h"

namespace tilewright {

namespace {

/// Nobody else looks between two requests that are made while this lives.
class ServerGrab {
public:
    explicit ServerGrab(X11Connection& connection)
        : connection_(connection) {
        xcb_grab_server(connection_.xcb());
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;
    ~ServerGrab() {
        xcb_ungrab_server(connection_.xcb());
        connection_.flush();
    }

private:
    X11Connection& connection_;
};

} // namespace

X11InstanceActivation::X11InstanceActivation(X11Connection& connection)
    : connection_(connection)
    , selection_(connection.intern(QByteArrayLiteral("_TILEWRIGHT_INSTANCE"))) {}

X11InstanceActivation::~X11InstanceActivation() {
    if (window_ == XCB_NONE || !connection_.isAlive())
        return;
    xcb_destroy_window(connection_.xcb(), window_);
    connection_.flush();
}

InstanceActivation::Claim X11InstanceActivation::claim() {
    if (selection_ == XCB_ATOM_NONE || window_ != XCB_NONE)
        return Claim::first;
    xcb_connection_t* xcb = connection_.xcb();
    const ServerGrab grab(connection_);
    const auto owner = connection_.reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(xcb, selection_));
    // Nothing is taken from one that may yet turn out to be there.
    if (!owner)
        return Claim::first;
    if (owner->owner != XCB_NONE) {
        ask(owner->owner);
        return Claim::another;
    }
    window_ = xcb_generate_id(xcb);
    constexpr std::uint32_t isNobodysToManage = 1;
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window_, connection_.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      &isNobodysToManage);
    listener_ = connection_.listen(X11EventFilter::window(window_),
                                   [this](const xcb_generic_event_t& event) { heard(event); });
    xcb_set_selection_owner(xcb, window_, selection_, XCB_CURRENT_TIME);
    return Claim::first;
}

void X11InstanceActivation::ask(xcb_window_t first) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = first;
    message.type = selection_;
    // Without an event mask it goes to whoever made the window.
    xcb_send_event(connection_.xcb(), 0, first, XCB_EVENT_MASK_NO_EVENT,
                   static_cast<const char*>(static_cast<const void*>(&message)));
    // What a client that has gone by then sent last may be passed over, and this process ends next.
    static_cast<void>(
        connection_.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection_.xcb())));
}

void X11InstanceActivation::heard(const xcb_generic_event_t& event) {
    if (eventType(event) == XCB_CLIENT_MESSAGE &&
        eventAs<xcb_client_message_event_t>(event).type == selection_)
        requestActivation();
}

} // namespace tilewright
