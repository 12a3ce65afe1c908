// The applications of a real desktop as the program sees them.

#include "SnapBench.h"

#include <BareClient.h>

#include <QLabel>
#include <QSignalSpy>
#include <unistd.h>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

class ApplicationsOfADesktop : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
        platform = std::make_unique<X11TestPlatform>(desktop.display());
        ASSERT_TRUE(waitUntil([&] { return platform->accessibility.isTrusted(); }));
    }
    [[nodiscard]] Workspace& workspace() { return platform->workspace; }
    [[nodiscard]] bool isFrontmost(ProcessID process) {
        return waitUntil([&] { return workspace().frontmostApplication() == process; });
    }
    /// A window that says that it belongs to a process.
    [[nodiscard]] std::unique_ptr<BareClient> windowOfProcess(ProcessID process,
                                                              bool skipsTaskbar = false) {
        return std::make_unique<BareClient>(
            desktop.display(), QRect(300, 200, 400, 300),
            BareClientTraits{{}, static_cast<quint32>(process), skipsTaskbar, 0});
    }

    DesktopSession desktop;
    std::unique_ptr<X11TestPlatform> platform;
};

} // namespace

TEST_F(ApplicationsOfADesktop, HaveNoFrontmostOneBeforeTheFirstWindow) {
    EXPECT_EQ(workspace().frontmostApplication(), std::nullopt);
}

TEST_F(ApplicationsOfADesktop, AreFrontmostWithTheLastActiveWindow) {
    const ProcessID one = desktop.bus().pid();
    const ProcessID other = desktop.windowManager().pid();
    const auto first = windowOfProcess(one);
    ASSERT_TRUE(activate(desktop, first->window()));
    EXPECT_TRUE(isFrontmost(one));
    const auto second = windowOfProcess(other);
    ASSERT_TRUE(activate(desktop, second->window()));
    EXPECT_TRUE(isFrontmost(other));
    const QSignalSpy changes(&workspace(), &Workspace::activeWindowChanged);
    ASSERT_TRUE(activate(desktop, first->window()));
    EXPECT_TRUE(isFrontmost(one));
    EXPECT_TRUE(waitUntil([&] { return changes.count() == 1; }));
    second->destroy();
    EXPECT_TRUE(isFrontmost(one));
}

TEST_F(ApplicationsOfADesktop, HaveTheOneBeforeFrontmostOnceTheActiveWindowIsGone) {
    const ProcessID one = desktop.bus().pid();
    const ProcessID other = desktop.windowManager().pid();
    const auto first = windowOfProcess(one);
    ASSERT_TRUE(activate(desktop, first->window()));
    ASSERT_TRUE(isFrontmost(one));
    const auto second = windowOfProcess(other);
    ASSERT_TRUE(activate(desktop, second->window()));
    ASSERT_TRUE(isFrontmost(other));
    second->destroy();
    EXPECT_TRUE(isFrontmost(one));
}

TEST_F(ApplicationsOfADesktop, StayFrontmostWhileThisProgramsPanelIsActiveButNotItsSettings) {
    const ProcessID other = desktop.bus().pid();
    const auto window = windowOfProcess(other);
    ASSERT_TRUE(activate(desktop, window->window()));
    ASSERT_TRUE(isFrontmost(other));
    const auto panel = windowOfProcess(getpid(), true);
    ASSERT_TRUE(activate(desktop, panel->window()));
    EXPECT_TRUE(isFrontmost(other));
    const auto settings = windowOfProcess(getpid());
    ASSERT_TRUE(activate(desktop, settings->window()));
    EXPECT_TRUE(isFrontmost(getpid()));
}

TEST_F(ApplicationsOfADesktop, HaveNoFrontmostOneWhenTheActiveWindowTellsOfNone) {
    const BareClient window(desktop.display(), QRect(300, 200, 400, 300));
    ASSERT_TRUE(activate(desktop, window.window()));
    EXPECT_EQ(workspace().frontmostApplication(), std::nullopt);
}

TEST_F(ApplicationsOfADesktop, BearTheNameThatTheirWindowsTell) {
    const TestClient client = startClient(desktop, ClientKind::qt, QRect(300, 200, 400, 300));
    ASSERT_TRUE(activate(desktop, client.window));
    const ProcessID process = desktop.inspector().processID(client.window);
    ASSERT_TRUE(isFrontmost(process));
    const auto names = desktop.inspector().bytesProperty(client.window, "WM_CLASS").split('\0');
    ASSERT_GE(names.size(), 2);
    ASSERT_FALSE(names[1].isEmpty());
    EXPECT_EQ(workspace().localizedName(process), QString::fromLatin1(names[1]));
}

TEST_F(ApplicationsOfADesktop, BearTheNameOfTheirProcessWithoutAWindow) {
    const ProcessID process = desktop.windowManager().pid();
    const QString name = outputOf(QStringLiteral("ps"),
                                  {QStringLiteral("-o"), QStringLiteral("comm="),
                                   QStringLiteral("-p"), QString::number(process)},
                                  desktop.environment())
                             .trimmed();
    ASSERT_FALSE(name.isEmpty());
    EXPECT_EQ(workspace().localizedName(process), name);
}

TEST_F(ApplicationsOfADesktop, HaveNoNameOnceTheyAreGone) {
    Subprocess& process = desktop.start(QStringLiteral("sleep"), {QStringLiteral("1000")});
    const ProcessID gone = process.pid();
    ASSERT_TRUE(workspace().localizedName(gone).has_value());
    process.stop();
    EXPECT_EQ(workspace().localizedName(gone), std::nullopt);
    EXPECT_EQ(workspace().localizedName(0), std::nullopt);
    EXPECT_EQ(workspace().localizedName(-1), std::nullopt);
}

TEST_F(ApplicationsOfADesktop, AreShownWhatTheDesktopLacksInAWindowThatFollowsIt) {
    const X11Guidance& guidance = platform->desktop().guidance();
    const auto says = [&](X11Trust::Lack lack) {
        return waitUntil([&] {
            return guidance.window()->findChild<QLabel*>(QStringLiteral("title"))->text() ==
                   X11Guidance::stepFor(lack).title;
        });
    };
    workspace().openAccessibilitySettings();
    ASSERT_NE(guidance.window(), nullptr);
    EXPECT_TRUE(says(X11Trust::Lack::nothing));
    desktop.killWindowManager();
    EXPECT_TRUE(says(X11Trust::Lack::windowManager));
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    EXPECT_TRUE(says(X11Trust::Lack::nothing));
    EXPECT_TRUE(platform->notifications().shown.empty()) << "the window is enough";
}

TEST_F(ApplicationsOfADesktop, AreLedToTheWindowAlsoByTheNotification) {
    const X11Guidance& guidance = platform->desktop().guidance();
    EXPECT_EQ(guidance.window(), nullptr);
    Q_EMIT platform->desktop().trust().guidanceWanted();
    EXPECT_NE(guidance.window(), nullptr);
}

TEST_F(ApplicationsOfADesktop, AreBlendedWhileACompositorRuns) {
    EXPECT_FALSE(platform->appearance.blendsWindows());
    ASSERT_TRUE(desktop.startCompositor());
    EXPECT_TRUE(waitUntil([&] { return platform->appearance.blendsWindows(); }));
    desktop.stopCompositor();
    EXPECT_TRUE(waitUntil([&] { return !platform->appearance.blendsWindows(); }));
}

TEST_F(ApplicationsOfADesktop, StayWhereTheyAreWhenThisOneHasNoWindowToBringForward) {
    const auto window = windowOfProcess(desktop.bus().pid());
    ASSERT_TRUE(activate(desktop, window->window()));
    workspace().activateThisApplication();
    EXPECT_TRUE(isFrontmost(desktop.bus().pid()));
    EXPECT_EQ(desktop.inspector().activeWindow(), window->window());
}

TEST(ApplicationsOfAWaylandSession, AreToldThatAnX11SessionIsNeeded) {
    DesktopSession desktop;
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    const auto connection = X11Connection::open(desktop.display());
    FakeMainLoop loop;
    FakeUserNotifications notifications;
    MessageBus bus(loop, MessageBus::Kind::session);
    X11Desktop x11(*connection, loop, bus, notifications, true, {});
    EXPECT_FALSE(x11.accessibility().isTrusted());
    x11.workspace().openAccessibilitySettings();
    ASSERT_NE(x11.guidance().window(), nullptr);
    EXPECT_EQ(x11.guidance().window()->findChild<QLabel*>(QStringLiteral("title"))->text(),
              X11Guidance::stepFor(X11Trust::Lack::x11Session).title);
}
