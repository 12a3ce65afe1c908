// From start to end, however it ends.

#include "ShellUser.h"

#include <Displays.h>
#include <DragScript.h>
#include <ProcessFigures.h>
#include <TestClients.h>
#include <Waiting.h>

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

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
    RecordingIdleService idle(desktop.session().busAddress());
    desktop.startTray(TrayHost::systemTray);
    Subprocess& program = desktop.startProgram();
    desktop.startSession();
    ASSERT_TRUE(waitUntil([&] { return idle.isInhibited(); }));
    program.signal(GetParam());
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitCode(), 0) << "it ended by itself, not by the signal";
    EXPECT_TRUE(waitUntil([&] { return !idle.isInhibited(); }));
    EXPECT_EQ(idle.releases(), 1) << "it gave back what it held before it went";
}

INSTANTIATE_TEST_SUITE_P(, LifecycleSignal, ::testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const auto& parameter) {
                             return std::string(parameter.param == SIGTERM  ? "Term"
                                                : parameter.param == SIGINT ? "Interrupt"
                                                                            : "HangUp");
                         });

TEST_F(Lifecycle, HeedsNeitherOptionsNorAnotherPlatformInTheEnvironment) {
    desktop.startTray(TrayHost::systemTray);
    Subprocess& program = desktop.startProgram(
        {}, {{u"QT_QPA_PLATFORM"_s, u"offscreen"_s}},
        {u"-platform"_s, u"offscreen"_s, u"-display"_s, u":none"_s, u"--help"_s});
    const QRect panel = desktop.openPanel();
    desktop.input().click(ShellDesktop::quitButton(panel));
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitCode(), 0);
}

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

TEST_F(Lifecycle, IsFoundByASecondStartThoughTheSessionsBusIsGone) {
    Subprocess& program = desktop.startProgram();
    const auto opensOnASecondStart = [&] {
        return waitUntil([&] {
            EXPECT_EQ(desktop.startAgain(), 0);
            return desktop.panel().has_value();
        });
    };
    ASSERT_TRUE(opensOnASecondStart());
    desktop.input().tapKey(keysym::escape);
    ASSERT_TRUE(desktop.waitForPanel(false));
    desktop.session().bus().stop();
    EXPECT_TRUE(opensOnASecondStart());
    EXPECT_TRUE(program.isRunning());
}

TEST_F(Lifecycle, IsFoundByASecondStartWhereThereNeverWasABus) {
    desktop.session().bus().stop();
    Subprocess& program = desktop.startProgram();
    EXPECT_TRUE(waitUntil([&] {
        EXPECT_EQ(desktop.startAgain(), 0);
        return desktop.panel().has_value();
    }));
    EXPECT_TRUE(program.isRunning());
}

TEST_F(Lifecycle, WorksWhileTheSessionsBusSaysNothingAndJoinsItWhenItAnswers) {
    RecordingIdleService idle(desktop.session().busAddress());
    desktop.startTray(TrayHost::systemTray);
    desktop.session().bus().signal(SIGSTOP);
    Subprocess& program = desktop.startProgram();
    desktop.startSession();
    desktop.session().bus().signal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return idle.isInhibited(); }));
    program.signal(SIGTERM);
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(waitUntil([&] { return !idle.isInhibited(); }));
}

TEST_F(Lifecycle, GivesBackTheMemoryThatItsStartAndItsSettingsHaveUsed) {
    desktop.startTray(TrayHost::systemTray);
    const Subprocess& program = desktop.startProgram();
    // What is of files: code, for the most part.
    const auto files = [&] {
        const ProcessFigures figures = processFigures(program.pid());
        return figures.residentKiB - figures.anonymousKiB - figures.sharedMemoryKiB;
    };
    const auto fallsByHalf = [&] {
        long most = 0;
        return waitUntil([&] {
            const long now = files();
            most = std::max(most, now);
            return now < most / 2;
        });
    };
    EXPECT_TRUE(fallsByHalf());
    desktop.input().click(ShellDesktop::settingsButton(desktop.openPanel()));
    ASSERT_TRUE(waitUntil([&] { return desktop.settingsWindow().has_value(); }));
    ShellUser(desktop).closeSettings();
    EXPECT_TRUE(fallsByHalf());
}

TEST(LifecycleOnASilentBus, BeginsWithSnappingWindows) {
    DesktopSession desktop;
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    assignLayouts(desktop, {ZoneLayout::thirds()});
    const TestClient client = startClient(desktop, ClientKind::qt, {300, 300, 640, 420});
    ASSERT_NE(client.window, 0U);
    desktop.bus().signal(SIGSTOP);
    RunningProgram program(desktop);
    DragScript script(desktop, program);
    const QRect frame = zoneFrame(ZoneLayout::thirds().zones[2], workArea(desktop.inspector()));
    script.run(client, KeyTiming::afterTheDragBegan, frame.center());
    expectFills(desktop.inspector(), ClientKind::qt, client, frame);
    EXPECT_TRUE(program.isRunning());
    desktop.bus().signal(SIGCONT);
}

TEST_F(Lifecycle, StartsAgainAfterItWasKilled) {
    RecordingIdleService idle(desktop.session().busAddress());
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
    EXPECT_EQ(idle.releases(), 0) << "a killed process gives nothing back: the service sees to it";
    EXPECT_TRUE(waitUntil([&] { return !desktop.showsItem(); }));
    desktop.startProgram();
    desktop.openPanel();
    EXPECT_EQ(desktop.layouts(), before);
}

TEST_F(Lifecycle, EndsWithoutACrashWhenTheDisplayServerIsGone) {
    RecordingIdleService idle(desktop.session().busAddress());
    desktop.startTray(TrayHost::systemTray);
    Subprocess& program = desktop.startProgram();
    desktop.startSession();
    ASSERT_TRUE(waitUntil([&] { return idle.isInhibited(); }));
    desktop.session().server().kill();
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_NE(program.exitCode(), -1) << "a signal ended it";
    EXPECT_TRUE(waitUntil([&] { return !idle.isInhibited(); }));
}

TEST_F(Lifecycle, LeavesWhatTheUserChangedInWholeFilesWhenTheDisplayServerIsGone) {
    ShellUser user(desktop);
    desktop.startTray(TrayHost::systemTray);
    Subprocess& program = user.startProgram();
    const QRect panel = desktop.openPanel();
    desktop.input().click(desktop.card(panel, 0, 1));
    ASSERT_TRUE(waitUntil(
        [&] { return desktop.layouts().contains("00000000-0000-0000-0000-000000000002"); }));
    const QByteArray layouts = desktop.layouts();
    desktop.input().tapKey(keysym::escape);
    ASSERT_TRUE(desktop.waitForPanel(false));
    user.openSettings(u"General"_s);
    user.chooseBelow(2);
    // What the view shows, the file has to hold.
    static_cast<void>(user.place(u"combo box"_s, u"⌥ Option"_s));
    desktop.session().server().kill();
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_NE(program.exitCode(), -1) << "a signal ended it";

    EXPECT_EQ(desktop.layouts(), layouts);
    const QJsonObject stored = QJsonDocument::fromJson(layouts).object();
    EXPECT_EQ(stored[u"assignments"].toObject().size(), 1) << layouts.constData();
    const QFileInfo file(desktop.layoutsFile());
    EXPECT_EQ(file.dir().entryList(QDir::Files | QDir::Hidden), QStringList(file.fileName()))
        << "nothing half written lies beside it";
    QFile settings(desktop.session().home() + u"/.config/Tilewright/Tilewright.conf"_s);
    ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
    EXPECT_TRUE(settings.readAll().split('\n').contains("snapActivationModifier=option"));
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
