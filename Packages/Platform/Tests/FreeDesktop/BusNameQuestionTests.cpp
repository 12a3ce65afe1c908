#include "PrivateBus.h"

#include <FreeDesktop/BusNameQuestion.h>
#include <FreeDesktop/ScopedVariable.h>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace tilewright::testing {
namespace {

constexpr auto busVariable = "DBUS_SESSION_BUS_ADDRESS";
const QString name = QStringLiteral("org.example.Somebody");
const QString other = QStringLiteral("org.example.SomebodyElse");

} // namespace

TEST(BusNameQuestion, IsAnsweredByTheBus) {
    PrivateBus bus;
    const ScopedVariable environment(busVariable, bus.address());
    EXPECT_EQ(firstOnSessionBus({name, other}), QString());
    QDBusConnection owner = bus.connect();
    ASSERT_TRUE(owner.registerService(other));
    EXPECT_EQ(firstOnSessionBus({name, other}), other);
    ASSERT_TRUE(owner.registerService(name));
    EXPECT_EQ(firstOnSessionBus({name, other}), name);
    owner.unregisterService(name);
    EXPECT_EQ(firstOnSessionBus({name}), QString());
}

TEST(BusNameQuestion, IsAnsweredByABusThatIsSlowAsAtALogin) {
    PrivateBus bus;
    const ScopedVariable environment(busVariable, bus.address());
    QDBusConnection owner = bus.connect();
    ASSERT_TRUE(owner.registerService(name));
    QString answer;
    EXPECT_FALSE(bus.isDoneWithoutAnAnswer([&] { answer = firstOnSessionBus({name}); }, 400ms));
    EXPECT_EQ(answer, name);
}

TEST(BusNameQuestion, IsAnsweredWithNoByABusThatIsNotThereOrSaysNothing) {
    {
        const ScopedVariable environment(busVariable, "unix:path=/nonexistent/bus");
        EXPECT_EQ(firstOnSessionBus({name}), QString());
    }
    PrivateBus bus;
    QDBusConnection owner = bus.connect();
    ASSERT_TRUE(owner.registerService(name));
    const ScopedVariable environment(busVariable, bus.address());
    bus.pause();
    EXPECT_EQ(firstOnSessionBus({name}, 100ms), QString());
    bus.resume();
    EXPECT_EQ(firstOnSessionBus({name}), name);
}

} // namespace tilewright::testing
