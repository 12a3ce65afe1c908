#include "X11SystemTray.h"

namespace tilewright {

X11SystemTray::X11SystemTray(X11Connection& connection)
    : owner_(connection, connection.intern("_NET_SYSTEM_TRAY_S" +
                                           QByteArray::number(connection.screenNumber()))) {
    connect(&owner_, &X11SelectionOwner::changed, this, &SystemTray::changed);
}

} // namespace tilewright
