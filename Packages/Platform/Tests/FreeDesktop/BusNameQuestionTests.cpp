#include "PrivateBus.h"

#include <FreeDesktop/BusNameQuestion.h>

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

/// Has the environment name another session bus for as long as it lives.
class SessionBusOfTheEnvironment {
public:
    explicit SessionBusOfTheEnvironment(const QByteArray& address) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    }
    ~SessionBusOfTheEnvironment() {
        if (former_.isEmpty())
            qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        else
            qputenv("DBUS_SESSION_BUS_ADDRESS", former_);
    }
    SessionBusOfTheEnvironment(const SessionBusOfTheEnvironment&) = delete;

private:
    const QByteArray former_ = qgetenv("DBUS_SESSION_BUS_ADDRESS");
};

const QString name = QStringLiteral("org.example.Somebody");

} // namespace

TEST(BusNameQuestion, IsAnsweredByTheBus) {
    PrivateBus bus;
    const SessionBusOfTheEnvironment environment(bus.address());
    EXPECT_FALSE(isOnSessionBus(name));
    QDBusConnection owner = bus.connect();
    ASSERT_TRUE(owner.registerService(name));
    EXPECT_TRUE(isOnSessionBus(name));
    owner.unregisterService(name);
    EXPECT_FALSE(isOnSessionBus(name));
}

TEST(BusNameQuestion, IsAnsweredWithNoByABusThatIsNotThereOrSaysNothing) {
    {
        const SessionBusOfTheEnvironment environment("unix:path=/nonexistent/bus");
        EXPECT_FALSE(isOnSessionBus(name));
    }
    PrivateBus bus;
    QDBusConnection owner = bus.connect();
    ASSERT_TRUE(owner.registerService(name));
    const SessionBusOfTheEnvironment environment(bus.address());
    bus.pause();
    EXPECT_FALSE(isOnSessionBus(name));
    bus.resume();
    EXPECT_TRUE(isOnSessionBus(name));
}

} // namespace tilewright::testing
