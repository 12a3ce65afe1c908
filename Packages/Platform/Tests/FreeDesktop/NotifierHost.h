#pragma once

#include <Waiting.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QIcon>
#include <QPainter>
#include <gtest/gtest.h>

namespace tilewright::testing {

/// A red disc.
inline QIcon discIcon() {
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setBrush(Qt::red);
    painter.drawEllipse(4, 4, 56, 56);
    painter.end();
    return QIcon(pixmap);
}

/// A host's side of the bus: calls an item and waits, turning the event loop that the item shares.
class NotifierHost {
public:
    explicit NotifierHost(QDBusConnection bus)
        : bus_(std::move(bus)) {}

    QDBusMessage call(const QString& service, const QString& interface, const QString& method,
                      const QVariantList& arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            service, QStringLiteral("/StatusNotifierItem"), interface, method);
        message.setArguments(arguments);
        const QDBusPendingCallWatcher pending(bus_.asyncCall(message));
        EXPECT_TRUE(waitUntil([&] { return pending.isFinished(); }));
        return pending.reply();
    }
    QVariant property(const QString& service, const QString& name) {
        const QDBusMessage reply =
            call(service, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                 {QStringLiteral("org.kde.StatusNotifierItem"), name});
        return reply.arguments().value(0).value<QDBusVariant>().variant();
    }

private:
    QDBusConnection bus_;
};

} // namespace tilewright::testing
