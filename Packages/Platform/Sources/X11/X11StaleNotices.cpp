#include "X11StaleNotices.h"

namespace tilewright {

namespace {
/// More than the properties of a root window that anybody reads.
constexpr std::size_t mostProperties = 64;
} // namespace

X11StaleNotices::X11StaleNotices(xcb_connection_t* connection)
    : connection_(connection) {}

bool X11StaleNotices::isRoot(xcb_window_t window) const {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (; screens.rem > 0; xcb_screen_next(&screens)) {
        if (screens.data->root == window)
            return true;
    }
    return false;
}

bool X11StaleNotices::nativeEventFilter(const QByteArray& eventType, void* message,
                                        qintptr* /*result*/) {
    if (eventType != QByteArrayLiteral("xcb_generic_event_t"))
        return false;
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto& notice = *static_cast<const xcb_property_notify_event_t*>(message);
    if (!isRoot(notice.window))
        return false;
    // An event bears the number of the request that the server had done last. One from before this
    // request tells of what was so when Qt read.
    if (const auto found = readAfter_.find(notice.atom);
        found != readAfter_.end() &&
        static_cast<std::int32_t>(event.full_sequence - found->second) < 0) {
        flood_.note(1);
        return true;
    }
    // Whoever sends a list of names only has them told more often.
    if (readAfter_.size() == mostProperties)
        readAfter_.clear();
    readAfter_[notice.atom] = xcb_no_operation(connection_).sequence;
    return false;
}

} // namespace tilewright
