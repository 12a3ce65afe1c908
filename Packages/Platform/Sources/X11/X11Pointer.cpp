#include "X11Pointer.h"

namespace tilewright {

AppKitPoint X11Pointer::location() const {
    const auto answer = connection_.reply<xcb_query_pointer_reply_t>(
        xcb_query_pointer(connection_.xcb(), connection_.root()));
    if (answer && answer->same_screen != 0)
        lastPlace_ = QPoint(answer->root_x, answer->root_y);
    return screens_.coordinates().toAppKit(lastPlace_);
}

} // namespace tilewright
