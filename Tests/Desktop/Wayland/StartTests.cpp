// Which desktop the program finds, on real servers: it starts, stays the one instance, and ends
// when it is told to.

#include "WaylandSession.h"

#include <X11/X11ServerProbe.h>
#include <XServer.h>

#include <QFileInfo>

namespace tilewright::testing {

namespace {

/// The bare display servers, with something in each process that asks Qt for OpenGL as it starts.
class OpenGlAtTheStart : public WaylandSession {
protected:
    void SetUp() override {
        environment.insert(u"QT_PLUGIN_PATH"_s,
                           QFileInfo(QStringLiteral(TILEWRIGHT_OPENGL_QUESTION)).path());
        environment.insert(u"QT_QPA_GENERIC_PLUGINS"_s, u"openglquestion:"_s + answerFile());
    }
    /// What a program is answered while it starts, "yes" or "no".
    [[nodiscard]] QByteArray answerTo(const QString& path) {
        QFile::remove(answerFile());
        Subprocess asked;
        EXPECT_TRUE(asked.start(path, {}, environment, programLog()));
        QByteArray answer;
        EXPECT_TRUE(waitUntil([&] { return !(answer = contentsOf(answerFile())).isEmpty(); }))
            << contentsOf(programLog()).toStdString();
        return answer;
    }
    [[nodiscard]] QByteArray answerToUs() { return answerTo(QStringLiteral(TILEWRIGHT_PROGRAM)); }
    [[nodiscard]] QByteArray answerToOthers() {
        return answerTo(QStringLiteral(TILEWRIGHT_TEST_WINDOW));
    }

private:
    [[nodiscard]] QString answerFile() const { return folder.filePath(u"answer"_s); }
};

} // namespace

TEST_F(OpenGlAtTheStart, IsNotThereForTheProgramOnAnXServer) {
    const auto server = XServer::virtualScreen({640, 480});
    environment.insert(u"DISPLAY"_s, server->display());
    environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    EXPECT_EQ(answerToOthers(), "yes");
    EXPECT_EQ(answerToUs(), "no");
}

TEST_F(OpenGlAtTheStart, IsNotThereForTheProgramOnWayland) {
    start(Beside::nothing);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"wayland"_s);
    EXPECT_EQ(answerToOthers(), "yes");
    EXPECT_EQ(answerToUs(), "no");
}

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
