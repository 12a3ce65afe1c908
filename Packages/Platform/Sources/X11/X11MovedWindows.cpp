#include "X11MovedWindows.h"

namespace tilewright {

void X11MovedWindows::begin() {
    changes_.clear();
    setHeld(true);
}

void X11MovedWindows::setHeld(bool isHeld) {
    if (isHeld == listener_.isActive())
        return;
    changes_.clear();
    if (!isHeld) {
        listener_.reset();
        interest_.reset();
        return;
    }
    listener_ = connection_.listen(X11EventFilter::type(XCB_CONFIGURE_NOTIFY),
                                   [this](const xcb_generic_event_t& event) { heard(event); });
    interest_ = selection_.select(connection_.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

void X11MovedWindows::heard(const xcb_generic_event_t& event) {
    const auto& notice = eventAs<xcb_configure_notify_event_t>(event);
    // Window managers send clients such notices in the server's stead, about other windows.
    constexpr std::uint8_t isSent = 0x80;
    if (notice.event == connection_.root() && (event.response_type & isSent) == 0)
        changes_.configured(notice.window, QPoint(notice.x, notice.y));
}

} // namespace tilewright
