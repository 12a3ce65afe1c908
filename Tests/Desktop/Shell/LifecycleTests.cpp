// From start to end, however it ends.

#include "ShellDesktop.h"

#include <TestClients.h>
#include <Waiting.h>

#include <csignal>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class Lifecycle : public ::testing::Test {
protected:
    ShellDesktop desktop;
};

class LifecycleSignal : public ::testing::TestWithParam<int> {
protected:
    ShellDesktop desktop;
};

} // namespace

TEST_P(LifecycleSignal, EndsTheSessionAndTheProcessInOrder) {
    IdleService idle(desktop.session().busAddress());
    desktop.startTray(TrayHost::systemTray);
    Subprocess& program = desktop.startProgram();
    desktop.startSession();
    ASSERT_TRUE(waitUntil([&] { return idle.isInhibited(); }));
    program.signal(GetParam());
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitCode(), 0) << "it ended by itself, not by the signal";
    EXPECT_TRUE(waitUntil([&] { return !idle.isInhibited(); }));
}

INSTANTIATE_TEST_SUITE_P(, LifecycleSignal, ::testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const auto& parameter) {
                             return std::string(parameter.param == SIGTERM  ? "Term"
                                                : parameter.param == SIGINT ? "Interrupt"
                                                                            : "HangUp");
                         });

TEST_F(Lifecycle, OpensThePanelOfTheFirstInstanceOnASecondStart) {
    Subprocess& program = desktop.startProgram();
    desktop.input().move({960, 540});
    // Without a tray the panel is what tells that the program is there.
    ASSERT_TRUE(waitUntil([&] {
        EXPECT_EQ(desktop.startAgain(), 0);
        return desktop.panel().has_value();
    }));
    EXPECT_TRUE(program.isRunning());
    const QRect panel = desktop.panel().value_or(QRect());
    EXPECT_NEAR(panel.center().x(), 960, 2);
    EXPECT_TRUE(QRect(0, 0, 1920, 1080).contains(panel));
}

TEST_F(Lifecycle, StartsAgainAfterItWasKilled) {
    IdleService idle(desktop.session().busAddress());
    desktop.startTray(TrayHost::systemTray);
    Subprocess& first = desktop.startProgram();
    const QRect panel = desktop.openPanel();
    desktop.input().click(desktop.card(panel, 0, 1));
    ASSERT_TRUE(waitUntil(
        [&] { return desktop.layouts().contains("00000000-0000-0000-0000-000000000002"); }));
    desktop.input().tapKey(keysym::escape);
    ASSERT_TRUE(desktop.waitForPanel(false));
    desktop.startSession();
    ASSERT_TRUE(waitUntil([&] { return idle.isInhibited(); }));
    const QByteArray before = desktop.layouts();
    first.signal(SIGKILL);
    ASSERT_TRUE(first.waitForEnd());
    EXPECT_TRUE(waitUntil([&] { return !idle.isInhibited(); })) << "nothing is left behind";
    EXPECT_TRUE(waitUntil([&] { return !desktop.showsItem(); }));
    desktop.startProgram();
    desktop.openPanel();
    EXPECT_EQ(desktop.layouts(), before);
}

TEST_F(Lifecycle, EndsWithoutACrashWhenTheDisplayServerIsGone) {
    IdleService idle(desktop.session().busAddress());
    desktop.startTray(TrayHost::systemTray);
    Subprocess& program = desktop.startProgram();
    desktop.startSession();
    ASSERT_TRUE(waitUntil([&] { return idle.isInhibited(); }));
    desktop.session().server().kill();
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_NE(program.exitCode(), -1) << "a signal ended it";
    EXPECT_TRUE(waitUntil([&] { return !idle.isInhibited(); }));
}

TEST_F(Lifecycle, ClosesThePanelWhenAnotherWindowBecomesActive) {
    desktop.startTray(TrayHost::systemTray);
    desktop.startProgram();
    desktop.openPanel();
    const TestClient client = startClient(desktop.session(), ClientKind::qt);
    ASSERT_NE(client.window, 0U);
    EXPECT_TRUE(desktop.waitForPanel(false));
}

} // namespace tilewright::testing
