#include "X11SystemTray.h"

#include "X11Qt.h"

#include <QGuiApplication>
#include <algorithm>
#include <cstdint>
#include <utility>

namespace tilewright {

namespace {

/// Set in the type of an event that a client has sent.
constexpr std::uint8_t isSent = 0x80;

/// Takes one of the value out. Whether there was one.
bool takeOne(std::vector<xcb_window_t>& windows, xcb_window_t window) {
    const auto found = std::find(windows.begin(), windows.end(), window);
    if (found == windows.end())
        return false;
    windows.erase(found);
    return true;
}

} // namespace

X11SystemTray::X11SystemTray(X11Connection& connection)
    : announcement_(connection.intern("MANAGER"))
    , selection_(
          connection.intern("_NET_SYSTEM_TRAY_S" + QByteArray::number(connection.screenNumber())))
    , root_(connection.root())
    , owner_(connection, selection_)
    , current_(owner_.window()) {
    connect(&owner_, &X11SelectionOwner::changed, this, &X11SystemTray::follow);
    xcb_connection_t* const qt = x11qt::connection();
    if (!qt)
        return;
    mailbox_ = xcb_generate_id(qt);
    xcb_create_window(qt, 0, mailbox_, root_, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    qGuiApp->installNativeEventFilter(this);
}

X11SystemTray::~X11SystemTray() {
    xcb_connection_t* const qt = x11qt::connection();
    if (qt && mailbox_ != XCB_NONE)
        xcb_destroy_window(qt, mailbox_);
}

void X11SystemTray::follow() {
    const xcb_window_t former = std::exchange(current_, owner_.window());
    if (former != XCB_NONE && former != current_ && mailbox_ != XCB_NONE)
        tellQtOfTheEnd(former);
    if (leaving_.empty())
        Q_EMIT changed();
}

void X11SystemTray::tellQtOfTheEnd(xcb_window_t window) {
    leaving_.push_back(window);
    xcb_destroy_notify_event_t notice{};
    notice.response_type = XCB_DESTROY_NOTIFY;
    notice.event = window;
    notice.window = window;
    xcb_connection_t* const qt = x11qt::connection();
    // With no event asked for it goes to whoever made the window.
    xcb_send_event(qt, 0, mailbox_, XCB_EVENT_MASK_NO_EVENT,
                   static_cast<const char*>(static_cast<const void*>(&notice)));
    xcb_flush(qt);
}

bool X11SystemTray::nativeEventFilter(const QByteArray& eventType, void* message,
                                      qintptr* /*result*/) {
    if (eventType != QByteArrayLiteral("xcb_generic_event_t"))
        return false;
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    switch (event.response_type & ~isSent) {
    case XCB_CLIENT_MESSAGE:
        return isAnnouncement(*static_cast<const xcb_client_message_event_t*>(message));
    case XCB_DESTROY_NOTIFY:
        return isNoNews(*static_cast<const xcb_destroy_notify_event_t*>(message));
    default:
        return false;
    }
}

bool X11SystemTray::isAnnouncement(const xcb_client_message_event_t& notice) const {
    return notice.type == announcement_ && notice.data.data32[1] == selection_;
}

bool X11SystemTray::isNoNews(const xcb_destroy_notify_event_t& notice) {
    if (notice.event != notice.window)
        return false;
    if ((notice.response_type & isSent) == 0) {
        const bool isTray = notice.window == current_ || std::find(leaving_.begin(), leaving_.end(),
                                                                   notice.window) != leaving_.end();
        if (isTray)
            ended_.push_back(notice.window);
        return false;
    }
    if (!takeOne(leaving_, notice.window))
        return false;
    // Once Qt has taken this in.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (leaving_.empty())
                Q_EMIT changed();
        },
        Qt::QueuedConnection);
    // It may know the next tray by the same number already.
    return takeOne(ended_, notice.window);
}

} // namespace tilewright
