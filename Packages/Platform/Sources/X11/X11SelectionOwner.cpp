#include "X11SelectionOwner.h"

#include <xcb/xfixes.h>

namespace tilewright {

X11SelectionOwner::X11SelectionOwner(X11Connection& connection, xcb_atom_t selection)
    : connection_(connection)
    , selection_(selection) {
    if (connection_.xfixes().isPresent) {
        listener_ = connection_.listen(
            X11EventFilter::type(static_cast<std::uint8_t>(connection_.xfixes().firstEvent +
                                                           XCB_XFIXES_SELECTION_NOTIFY)),
            [this](const xcb_generic_event_t& event) {
                const auto& notice = eventAs<xcb_xfixes_selection_notify_event_t>(event);
                if (notice.selection != selection_)
                    return;
                window_ = notice.owner;
                Q_EMIT changed();
            });
        xcb_xfixes_select_selection_input(
            connection_.xcb(), connection_.root(), selection_,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    // After the selection of events: nothing is missed between the two.
    connect(&connection_, &X11Connection::answersAgain, this, &X11SelectionOwner::read);
    read();
}

void X11SelectionOwner::read() {
    const auto owner = connection_.reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(connection_.xcb(), selection_));
    if (!owner || owner->owner == window_)
        return;
    window_ = owner->owner;
    Q_EMIT changed();
}

} // namespace tilewright
