// The real program in a session of GNOME, as far as a compositor without a screen and a stand-in
// for the shell are one: what it is told goes in by the bus, and its commands come out.

#include "MockCompanion.h"
#include "WaylandSession.h"

namespace tilewright::testing {
namespace {

constexpr int control = 2;

class GnomeSession : public WaylandSession {
protected:
    void startShell() {
        shellsBus = QDBusConnection::connectToBus(environment.value(u"DBUS_SESSION_BUS_ADDRESS"_s),
                                                  u"shell"_s);
        shell = std::make_unique<MockCompanion>(shellsBus);
        shell->extensionState = 1;
    }
    void TearDown() override {
        shell.reset();
        QDBusConnection::disconnectFromBus(u"shell"_s);
    }
    /// Starts the program and greets it.
    void meetProgram() {
        ASSERT_TRUE(startProgram());
        ASSERT_TRUE(waitUntil([&] { return shell->seesProgram(); }))
            << contentsOf(programLog()).toStdString();
        shell->greet(helloText(displayText(), windowText(3)));
        ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    }
    void tell(const char* method, const QByteArray& text) {
        shell->call(method, text);
        ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    }
    [[nodiscard]] bool isPanelShown() const {
        return shell->panel && (*shell->panel)[u"shown"_s].toBool();
    }

    QDBusConnection shellsBus{QString()};
    std::unique_ptr<MockCompanion> shell;
};

} // namespace

TEST_F(GnomeSession, IsKnownByTheShellsNameOnTheBusAndServedThroughItsCompanion) {
    start(Beside::xServer);
    environment.insert(u"DISPLAY"_s, xDisplay());
    startShell();
    meetProgram();
    EXPECT_TRUE(hasLoaded("libqwayland"));
    EXPECT_FALSE(hasLoaded("libqxcb.so"));
    ASSERT_TRUE(shell->item);
    EXPECT_EQ((*shell->item)[u"icon"_s].toString(), u"tilewright-symbolic"_s);
    ASSERT_TRUE(shell->panel);
    EXPECT_FALSE(isPanelShown());
    program.signal(SIGTERM);
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitCode(), 0) << contentsOf(programLog()).toStdString();
    EXPECT_FALSE(shell->seesProgram());
}

TEST_F(GnomeSession, SnapsTheWindowThatTheUserDrags) {
    start(Beside::nothing);
    startShell();
    meetProgram();
    tell("DragBegin", dragText(1, "[300,500]", 0));
    tell("DragMotion", dragText(1, "[301,500]", control));
    EXPECT_TRUE(shell->overlay);
    tell("DragEnd", dragEndText(1, "[301,501]", control, false));
    EXPECT_FALSE(shell->overlay);
    ASSERT_TRUE(shell->frames.contains(7));
    EXPECT_EQ(shell->frames[7][1].toInt(), 32);
}

TEST_F(GnomeSession, OpensThePanelByTheItemAndASecondStartByThePointer) {
    start(Beside::nothing);
    startShell();
    meetProgram();
    tell("ItemClicked", R"({"item":[1800,0,24,32],"pointer":[1810,10]})");
    EXPECT_TRUE(isPanelShown());
    EXPECT_EQ((*shell->panel)[u"anchor"_s].toArray(), (QJsonArray{1800, 0, 24, 32}));
    tell("ItemClicked", R"({"item":[1800,0,24,32],"pointer":[1810,10]})");
    EXPECT_FALSE(isPanelShown());
    EXPECT_TRUE(program.isRunning());
    shell->onCommand = [this](const QJsonObject& command) {
        if (command[u"c"_s].toString() == u"pointer"_s)
            shell->call("Pointer", R"({"pointer":[70,80],"keys":0})");
    };
    // While the bus, which this thread serves, is heard.
    Subprocess second;
    ASSERT_TRUE(second.start(QStringLiteral(TILEWRIGHT_PROGRAM), {}, environment));
    ASSERT_TRUE(waitUntil([&] { return isPanelShown(); }))
        << contentsOf(programLog()).toStdString();
    EXPECT_TRUE(second.waitForEnd());
    EXPECT_EQ(shell->pointerQuestions, 1);
    EXPECT_EQ((*shell->panel)[u"anchor"_s].toArray(), (QJsonArray{70, 80, 0, 0}));
}

} // namespace tilewright::testing
