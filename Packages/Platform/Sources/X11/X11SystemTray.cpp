#include "X11SystemTray.h"

#include "X11Qt.h"

#include <QGuiApplication>

namespace tilewright {

X11SystemTray::X11SystemTray(X11Connection& connection)
    : announcement_(connection.intern("MANAGER"))
    , selection_(
          connection.intern("_NET_SYSTEM_TRAY_S" + QByteArray::number(connection.screenNumber())))
    , owner_(connection, selection_) {
    connect(&owner_, &X11SelectionOwner::changed, this, &SystemTray::changed);
    if (x11qt::connection())
        qGuiApp->installNativeEventFilter(this);
}

bool X11SystemTray::nativeEventFilter(const QByteArray& eventType, void* message,
                                      qintptr* /*result*/) {
    if (eventType != QByteArrayLiteral("xcb_generic_event_t"))
        return false;
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    if ((event.response_type & 0x7f) != XCB_CLIENT_MESSAGE)
        return false;
    const auto& notice = *static_cast<const xcb_client_message_event_t*>(message);
    return notice.type == announcement_ && notice.data.data32[1] == selection_;
}

} // namespace tilewright
