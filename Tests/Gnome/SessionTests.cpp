// The program with its companion in a session of GNOME Shell with others on its bus.

#include "ProgramInGnome.h"

#include <Companion/CompanionBus.h>
#include <csignal>

namespace tilewright::testing {

TEST_F(ProgramInGnome, SnapsTheLastActiveWindowThatIsNotItsOwnByAClickOnAZoneInThePanel) {
    expectToSnapTheLastActiveWindowByAClickInThePanel(start);
}

TEST_F(ProgramInGnome, ListensToNoStrangerHoweverOftenHeCallsDuringADrag) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(CompanionBus::serviceName(), CompanionBus::objectPath(),
                                       CompanionBus::interfaceName(), QStringLiteral("Hello"));
    call << QStringLiteral(
        R"({"protocol":1,"shell":"43","displays":[],"focus":null,"pointer":[0,0],"keys":0})");
    expectToSnapUnderAFloodOf(call, session.startClient(CompositorClient::qt, start));
}

TEST_F(ProgramInGnome, KeepsTheSessionFromGoingIdleUntilItIsToldToStopOrIsKilled) {
    session.startSessionManager();
    startAgainWith("control");
    const auto openWithContent = [&] {
        openPanel();
        // A key that comes in the moment in which it opens finds nothing in it to press yet.
        static_cast<void>(firstZoneInPanel());
    };
    expectToKeepAwakeUntilToldToStopOrKilled(
        *program, openWithContent, [&] { return session.isKeptAwake(); }, patience);
}

} // namespace tilewright::testing
