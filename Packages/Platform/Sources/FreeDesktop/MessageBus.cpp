#include "MessageBus.h"

namespace tilewright {

QDBusMessage callToBus(const QString& method) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"), method);
}

} // namespace tilewright
