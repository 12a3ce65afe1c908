#include "FreeDesktopUserNotifications.h"

#include <QDBusMessage>
#include <QVariantMap>

namespace tilewright {

namespace {
constexpr quint32 replacesNone = 0;
constexpr qint32 expiresAsTheServiceLikes = -1;
} // namespace

FreeDesktopUserNotifications::FreeDesktopUserNotifications(const MessageBus& bus)
    : bus_(bus) {}

void FreeDesktopUserNotifications::show(const QString& title, const QString& text) {
    if (!bus_.isJoined())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"),
        QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    const QVariantMap hints{
        {QStringLiteral("desktop-entry"), QStringLiteral("org.tilewright.Tilewright")},
    };
    // The body may be read as markup.
    call << QStringLiteral("Tilewright") << replacesNone << QStringLiteral("tilewright") << title
         << text.toHtmlEscaped() << QStringList() << hints << expiresAsTheServiceLikes;
    bus_.connection().send(call);
}

} // namespace tilewright
