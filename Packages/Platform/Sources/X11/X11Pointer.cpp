#include "X11Pointer.h"

namespace tilewright {

X11Pointer::Known::Known(X11Pointer& pointer, QPoint place)
    : pointer_(pointer) {
    pointer_.lastPlace_ = place;
    pointer_.isKnown_ = true;
}

X11Pointer::Known::~Known() {
    pointer_.isKnown_ = false;
}

AppKitPoint X11Pointer::location() const {
    if (isKnown_)
        return screens_.coordinates().toAppKit(lastPlace_);
    const auto answer = connection_.reply<xcb_query_pointer_reply_t>(
        xcb_query_pointer(connection_.xcb(), connection_.root()));
    if (answer && answer->same_screen != 0)
        lastPlace_ = QPoint(answer->root_x, answer->root_y);
    return screens_.coordinates().toAppKit(lastPlace_);
}

} // namespace tilewright
