#include "BusNameQuestion.h"

#include "BusGreeting.h"
#include "MessageBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <algorithm>

namespace tilewright {

namespace {

/// As the bus says it; no where it does not answer.
bool isOwned(const QDBusConnection& bus, const QString& name, std::chrono::milliseconds bound) {
    QDBusMessage question = callToBus(QStringLiteral("NameHasOwner"));
    question << name;
    const QDBusMessage reply = bus.call(question, QDBus::Block, static_cast<int>(bound.count()));
    return reply.type() == QDBusMessage::ReplyMessage && reply.arguments().value(0).toBool();
}

} // namespace

QString firstOnSessionBus(const QStringList& names, std::chrono::milliseconds bound) {
    const QByteArray addresses = MessageBus::addresses(MessageBus::Kind::session);
    // The library would wait for one that says nothing.
    if (addresses.isEmpty() || BusGreeting(addresses).wait(bound) != BusGreeting::State::answered)
        return {};
    const QString connection = QStringLiteral("tilewright-question");
    QString first;
    {
        const QDBusConnection bus =
            QDBusConnection::connectToBus(QString::fromLocal8Bit(addresses), connection);
        const auto found = std::find_if(names.begin(), names.end(), [&](const QString& name) {
            return isOwned(bus, name, bound);
        });
        if (found != names.end())
            first = *found;
    }
    QDBusConnection::disconnectFromBus(connection);
    return first;
}

} // namespace tilewright
