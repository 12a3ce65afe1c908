#include "FreeDesktopUserNotifications.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QVariantMap>
#include <utility>

namespace tilewright {

namespace {
constexpr quint32 replacesNone = 0;
constexpr qint32 expiresAsTheServiceLikes = -1;

QString service() {
    return QStringLiteral("org.freedesktop.Notifications");
}

QString path() {
    return QStringLiteral("/org/freedesktop/Notifications");
}

/// What a click on the message itself stands for.
QString clickAction() {
    return QStringLiteral("default");
}

QDBusMessage notify(const QString& title, const QString& text, const QStringList& actions) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(service(), path(), service(), QStringLiteral("Notify"));
    const QVariantMap hints{
        {QStringLiteral("desktop-entry"), QStringLiteral("org.tilewright.Tilewright")},
    };
    // The body may be read as markup.
    call << QStringLiteral("Tilewright") << replacesNone << QStringLiteral("tilewright") << title
         << text.toHtmlEscaped() << actions << hints << expiresAsTheServiceLikes;
    return call;
}
} // namespace

FreeDesktopUserNotifications::FreeDesktopUserNotifications(const MessageBus& bus)
    : bus_(bus)
    , signals_(bus, path(), service(), {QStringLiteral("ActionInvoked")}) {
    connect(&signals_, &BusSignals::heard, this, &FreeDesktopUserNotifications::actionInvoked);
}

void FreeDesktopUserNotifications::show(const QString& title, const QString& text,
                                        std::function<void()> chosen) {
    if (!bus_.isJoined())
        return;
    const QDBusMessage call = notify(title, text, {clickAction(), tr("Show")});
    whenAnswered(bus_.connection().asyncCall(call), this,
                 [this, chosen = std::move(chosen)](const QDBusMessage& answer) {
                     if (answer.type() != QDBusMessage::ReplyMessage)
                         return;
                     shown_ = answer.arguments().value(0).toUInt();
                     chosen_ = chosen;
                     listenToOwner();
                 });
}

void FreeDesktopUserNotifications::listenToOwner() {
    whenAnswered(askForOwner(bus_.connection(), service()), this,
                 [this](const QDBusReply<QString>& owner) { signals_.listenTo(owner.value()); });
}

void FreeDesktopUserNotifications::actionInvoked(const QDBusMessage& notice) {
    const QVariantList told = notice.arguments();
    if (shown_ == 0 || told.value(0).toUInt() != shown_ ||
        told.value(1).toString() != clickAction())
        return;
    shown_ = 0;
    // It may show another one.
    if (const auto chosen = std::exchange(chosen_, nullptr))
        chosen();
}

} // namespace tilewright
