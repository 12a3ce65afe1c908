#include "BusNameOwner.h"

#include "MessageBus.h"

#include <QDBusReply>
#include <QDBusServiceWatcher>

namespace tilewright {

BusNameOwner::BusNameOwner(const QDBusConnection& bus, const QString& name, QObject* parent)
    : QObject(parent) {
    if (!bus.isConnected())
        return;
    auto* watch =
        new QDBusServiceWatcher(name, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watch, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) { heard(newOwner); });
    whenAnswered(askForOwner(bus, name), this, [this](const QDBusReply<QString>& owner) {
        // A change is handed out at once, an answer only later: it may be the older of both.
        if (!hasHeard_)
            heard(owner.value());
    });
}

BusNameOwner::~BusNameOwner() = default;

void BusNameOwner::heard(const QString& owner) {
    hasHeard_ = true;
    newest_ = owner;
    news_.post();
}

void BusNameOwner::tell() {
    owner_ = newest_;
    Q_EMIT changed();
}

} // namespace tilewright
