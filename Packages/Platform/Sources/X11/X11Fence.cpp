#include "X11Fence.h"

#include "X11Properties.h"

namespace tilewright {

X11Fence::X11Fence(X11Connection& connection, std::function<void()> reached)
    : connection_(connection)
    , reached_(std::move(reached))
    , window_(xcb_generate_id(connection.xcb())) {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection_.xcb(), XCB_COPY_FROM_PARENT, window_, connection_.root(), -10,
                      -10, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_EVENT_MASK, &events);
    listener_ = connection_.listen(X11EventFilter::window(window_),
                                   [this](const xcb_generic_event_t& event) {
                                       if (eventType(event) != XCB_PROPERTY_NOTIFY ||
                                           eventAs<xcb_property_notify_event_t>(event).atom !=
                                               connection_.atom(X11Atom::netFrameExtents) ||
                                           outstanding_ == 0)
                                           return;
                                       if (--outstanding_ == 0) {
                                           // A copy: the callee may end this fence.
                                           const auto reachedNow = reached_;
                                           reachedNow();
                                       }
                                   });
}

X11Fence::~X11Fence() {
    xcb_destroy_window(connection_.xcb(), window_);
}

void X11Fence::send() {
    sendToWindowManager(connection_, window_, X11Atom::netRequestFrameExtents, {});
    ++outstanding_;
}

} // namespace tilewright
