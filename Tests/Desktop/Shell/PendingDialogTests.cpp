// While the program waits for an answer to its one question.

#include "ShellUser.h"

#include <TestClients.h>
#include <Waiting.h>

#include <csignal>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {
namespace {

const char* const oneLayoutOfTheUsers = R"({"assignments":{},"customLayouts":[{
    "id":"6A1B2C3D-0000-4000-8000-000000000001","isBuiltIn":false,"name":"Mine",
    "systemImage":"square.dashed","zones":[{"height":1,
    "id":"6A1B2C3D-0000-4000-8000-000000000002","name":"All","width":1,"x":0,"y":0}]}]})";

class PendingDialog : public ::testing::Test {
protected:
    PendingDialog() {
        desktop.writeLayouts(oneLayoutOfTheUsers);
        desktop.startTray(TrayHost::systemTray);
        program = &user.startProgram();
        user.openSettings(u"Manage"_s);
        user.click(u"button"_s, u"Delete Mine"_s);
        EXPECT_TRUE(isDialogActive());
    }
    [[nodiscard]] std::optional<XInspector::Window> dialog() {
        return desktop.inspector().clientTitled(u"Delete “Mine”?"_s);
    }
    [[nodiscard]] bool isDialogActive() {
        return waitUntil([&] {
            const auto window = dialog();
            return window && desktop.inspector().activeWindow() == *window;
        });
    }

    ShellDesktop desktop;
    ShellUser user{desktop};
    Subprocess* program = nullptr;
};

} // namespace

TEST_F(PendingDialog, EndsWithTheProgramOnQuitAndDeletesNothing) {
    user.quit();
    EXPECT_EQ(desktop.layouts(), oneLayoutOfTheUsers);
}

TEST_F(PendingDialog, EndsWithTheProgramOnASignalAndDeletesNothing) {
    program->signal(SIGTERM);
    EXPECT_TRUE(program->waitForEnd());
    EXPECT_EQ(program->exitCode(), 0);
    EXPECT_EQ(desktop.layouts(), oneLayoutOfTheUsers);
}

TEST_F(PendingDialog, ComesForwardWithTheSettings) {
    const TestClient client =
        startClient(desktop.session(), ClientKind::xterm, QRect(300, 200, 1300, 800));
    ASSERT_NE(client.window, 0U);
    ASSERT_TRUE(waitUntil([&] { return desktop.inspector().activeWindow() == client.window; }));
    const QRect panel = desktop.openPanel();
    desktop.input().click(ShellDesktop::settingsButton(panel));
    ASSERT_TRUE(desktop.waitForPanel(false));
    EXPECT_TRUE(isDialogActive()) << desktop.session().describe();
    // What is clicked is what lies on top.
    user.click(u"button"_s, u"Cancel"_s);
    EXPECT_TRUE(waitUntil([&] { return !dialog(); }));
    EXPECT_TRUE(program->isRunning());
    EXPECT_EQ(desktop.layouts(), oneLayoutOfTheUsers);
}

} // namespace tilewright::testing
