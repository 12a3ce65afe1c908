#include "BusPrecaution.h"

#include "BusGreeting.h"
#include "MessageBus.h"

#include <QDBusConnection>

namespace tilewright {

BusPrecaution::BusPrecaution() {
    BusGreeting greeting(MessageBus::addresses(MessageBus::Kind::session));
    if (greeting.wait(bound) == BusGreeting::State::unanswered)
        silence_.emplace("DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null/none");
}

BusPrecaution::~BusPrecaution() {
    // Now that the bus answers, or is not there, Qt finds out at once, and never asks again.
    static_cast<void>(QDBusConnection::sessionBus());
}

} // namespace tilewright
