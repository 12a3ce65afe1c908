#include "BusPrecaution.h"

#include "BusGreeting.h"
#include "MessageBus.h"

#include <QDBusConnection>

namespace tilewright {

namespace {
constexpr auto variable = "DBUS_SESSION_BUS_ADDRESS";
} // namespace

BusPrecaution::BusPrecaution()
    : isSilent_(BusGreeting(MessageBus::addresses(MessageBus::Kind::session)).wait(bound) ==
                BusGreeting::State::unanswered) {
    if (!isSilent_)
        return;
    told_ = qgetenv(variable);
    qputenv(variable, "unix:path=/dev/null/none");
}

BusPrecaution::~BusPrecaution() {
    // Now that the bus answers, or is not there, Qt finds out at once, and never asks again.
    static_cast<void>(QDBusConnection::sessionBus());
    if (!isSilent_)
        return;
    if (told_.isEmpty())
        qunsetenv(variable);
    else
        qputenv(variable, told_);
}

} // namespace tilewright
