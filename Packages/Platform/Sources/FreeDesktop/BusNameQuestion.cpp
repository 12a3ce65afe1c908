#include "BusNameQuestion.h"

#include "BusGreeting.h"
#include "MessageBus.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace tilewright {

bool isOnSessionBus(const QString& name, std::chrono::milliseconds bound) {
    const QByteArray addresses = MessageBus::addresses(MessageBus::Kind::session);
    // The library would wait for one that says nothing.
    if (addresses.isEmpty() || BusGreeting(addresses).wait(bound) != BusGreeting::State::answered)
        return false;
    const QString connection = QStringLiteral("tilewright-question");
    bool isOwned = false;
    {
        const QDBusConnection bus =
            QDBusConnection::connectToBus(QString::fromLocal8Bit(addresses), connection);
        QDBusMessage question = callToBus(QStringLiteral("NameHasOwner"));
        question << name;
        const QDBusMessage reply =
            bus.call(question, QDBus::Block, static_cast<int>(bound.count()));
        isOwned = reply.type() == QDBusMessage::ReplyMessage && reply.arguments().value(0).toBool();
    }
    QDBusConnection::disconnectFromBus(connection);
    return isOwned;
}

} // namespace tilewright
