// The real program while a stranger on the session's bus calls it without a pause.

#include "ProgramInPlasma.h"

#include <Companion/CompanionBus.h>
#include <FreeDesktop/FreeDesktopInstanceActivation.h>

namespace tilewright::testing {

TEST_F(ProgramInPlasma, ListensToNoStrangerHoweverOftenHeCallsDuringADrag) {
    // By this name it is found; the companion knows it by its address.
    QDBusMessage call = QDBusMessage::createMethodCall(
        FreeDesktopInstanceActivation(QStringLiteral("wayland-test"), session.bus()).serviceName(),
        CompanionBus::objectPath(), CompanionBus::interfaceName(), QStringLiteral("Hello"));
    call << QStringLiteral(
        R"({"protocol":1,"shell":"5","displays":[],"focus":null,"pointer":[0,0],"keys":0})");
    expectToSnapUnderAFloodOf(call, session.startClient(CompositorClient::qt, start));
}

} // namespace tilewright::testing
