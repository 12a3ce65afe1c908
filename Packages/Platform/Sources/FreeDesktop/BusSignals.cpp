#include "BusSignals.h"

#include "MessageBus.h"

#include <QDBusConnection>
#include <utility>

namespace tilewright {

BusSignals::BusSignals(const MessageBus& bus, QString path, QString interface, QStringList names)
    : bus_(bus)
    , path_(std::move(path))
    , interface_(std::move(interface))
    , names_(std::move(names)) {
    connect(&bus_, &MessageBus::left, this, [this] { sender_.clear(); });
}

BusSignals::~BusSignals() = default;

void BusSignals::listenTo(const QString& address) {
    const bool wasListening = !sender_.isEmpty();
    sender_ = address;
    const bool isListening = !sender_.isEmpty();
    if (isListening == wasListening)
        return;
    // Of nobody in particular: for a sender's signals Qt asks the bus whose the address is, an
    // address though it be, and waits for the answer.
    const QString anybody;
    const char* const slot = SLOT(take(QDBusMessage));
    QDBusConnection bus = bus_.connection();
    for (const QString& name : names_)
        if (isListening)
            bus.connect(anybody, path_, interface_, name, this, slot);
        else
            bus.disconnect(anybody, path_, interface_, name, this, slot);
}

void BusSignals::take(const QDBusMessage& notice) {
    if (notice.service() == sender_)
        Q_EMIT heard(notice);
}

} // namespace tilewright
