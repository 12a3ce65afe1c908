// Which desktop the program finds, on real servers: it starts, stays the one instance, and ends
// when it is told to.

#include "WaylandSession.h"

#include <X11/X11ServerProbe.h>
#include <XServer.h>

namespace tilewright::testing {

TEST(X11ServerProbe, TellsAServerOfItsOwnFromNone) {
    const auto server = XServer::virtualScreen({640, 480});
    EXPECT_EQ(probeX11Server(server->display()), X11Server::independent);
    server->kill();
    EXPECT_EQ(probeX11Server(server->display()), X11Server::none);
}

TEST_F(WaylandSession, HasAnXServerThatSaysWhoseItIs) {
    start(Beside::xServer);
    EXPECT_EQ(probeX11Server(xDisplay()), X11Server::besideWayland);
}

TEST_F(WaylandSession, IsServedThroughTheXServerBesideIt) {
    start(Beside::xServer);
    environment.insert(u"DISPLAY"_s, xDisplay());
    ASSERT_TRUE(startProgram());
    EXPECT_TRUE(waitUntil([&] { return hasLoaded("libqxcb.so"); }))
        << contentsOf(programLog()).toStdString();
    EXPECT_FALSE(hasLoaded("libqwayland"));
    expectToRunAsTheOneInstanceUntilTold();
}

TEST_F(WaylandSession, IsServedByQtAloneWithoutAnXServer) {
    start(Beside::nothing);
    environment.insert(u"DISPLAY"_s, u":12345"_s);
    ASSERT_TRUE(startProgram());
    EXPECT_TRUE(waitUntil([&] { return hasLoaded("libqwayland"); }))
        << contentsOf(programLog()).toStdString();
    EXPECT_FALSE(hasLoaded("libqxcb.so"));
    expectToRunAsTheOneInstanceUntilTold();
}

TEST_F(WaylandSession, ThatIsGoneIsNoDesktopAndTheUserIsToldWhatWasLookedFor) {
    start(Beside::nothing);
    compositor.stop();
    ASSERT_TRUE(startProgram());
    ASSERT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitCode(), EXIT_FAILURE);
    EXPECT_TRUE(contentsOf(programLog()).contains("no desktop was found"))
        << contentsOf(programLog()).toStdString();
    EXPECT_TRUE(contentsOf(programLog()).contains(folder.filePath(u"wayland-test"_s).toUtf8()));
}

} // namespace tilewright::testing
