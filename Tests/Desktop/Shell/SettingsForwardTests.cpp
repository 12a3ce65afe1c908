// "Settings…" brings the one settings window forward, wherever it is.

#include "ShellDesktop.h"

#include <TestClients.h>
#include <Waiting.h>

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class SettingsUnder : public ::testing::TestWithParam<WindowManagerKind> {
protected:
    /// Opens the panel by starting the program again, as where a desktop shows no tray.
    void chooseSettings() {
        desktop.input().move({960, 200});
        // The window manager may still be busy activating a window, which closes the panel.
        ASSERT_TRUE(waitUntil([&] {
            return desktop.startAgain() == 0 &&
                   waitUntil([&] { return desktop.panel().has_value(); }, std::chrono::seconds(1));
        }));
        const QRect panel = desktop.panel().value_or(QRect());
        desktop.input().click(ShellDesktop::settingsButton(panel));
        ASSERT_TRUE(desktop.waitForPanel(false));
    }
    [[nodiscard]] bool isForward() {
        return waitUntil([&] {
            const auto window = desktop.settingsWindow();
            return window && desktop.inspector().isMapped(*window) &&
                   desktop.inspector().activeWindow() == *window;
        });
    }
    /// How the desktop stands, for the message of a failed test.
    [[nodiscard]] std::string standing() {
        XInspector& look = desktop.inspector();
        const auto desktopOf = [&](XInspector::Window window, const char* name) {
            return ::testing::PrintToString(look.property(window, name));
        };
        return "settings " + std::to_string(settings()) +
               (look.isMapped(settings()) ? " mapped" : " not mapped") + " on desktop " +
               desktopOf(settings(), "_NET_WM_DESKTOP") + ", active " +
               std::to_string(look.activeWindow()) + ", current desktop " +
               desktopOf(look.root(), "_NET_CURRENT_DESKTOP");
    }
    [[nodiscard]] XInspector::Window settings() { return desktop.settingsWindow().value_or(0); }
    [[nodiscard]] QString settingsID() { return QString::number(settings()); }
    void use(const QStringList& arguments) {
        static_cast<void>(
            outputOf(QStringLiteral("xdotool"), arguments, desktop.session().environment()));
    }
    /// Gives i3 a command about the settings window.
    void tellI3(const QString& command) {
        static_cast<void>(outputOf(QStringLiteral("i3-msg"),
                                   {QStringLiteral("[id=%1] %2").arg(settingsID()).arg(command)},
                                   desktop.session().environment()));
    }
    /// Waits until a window is the active one: one that becomes it later closes a panel that is
    /// open by then.
    void waitUntilActive(const TestClient& client) {
        ASSERT_TRUE(waitUntil([&] { return desktop.inspector().activeWindow() == client.window; }))
            << standing();
    }
    /// Puts the settings window out of sight, as its user would; another one comes to the front.
    void minimise(const TestClient& next) {
        // Out of sight is i3's scratchpad.
        if (GetParam() == WindowManagerKind::i3)
            tellI3(QStringLiteral("move scratchpad"));
        else
            use({QStringLiteral("windowminimize"), settingsID()});
        waitUntilActive(next);
    }
    /// Puts the settings window on the second desktop, the user staying on the first, where another
    /// one comes to the front.
    void sendToAnotherDesktop(const TestClient& next) {
        if (GetParam() == WindowManagerKind::i3) {
            tellI3(QStringLiteral("move container to workspace 2"));
        } else {
            use({QStringLiteral("set_num_desktops"), QStringLiteral("2")});
            use({QStringLiteral("set_desktop_for_window"), settingsID(), QStringLiteral("1")});
        }
        XInspector& look = desktop.inspector();
        ASSERT_TRUE(waitUntil([&] {
            return look.property(settings(), "_NET_WM_DESKTOP") == std::vector<quint32>{1} &&
                   look.property(look.root(), "_NET_CURRENT_DESKTOP") == std::vector<quint32>{0};
        })) << standing();
        waitUntilActive(next);
    }

    ShellDesktop desktop{GetParam()};
};

} // namespace

TEST_P(SettingsUnder, OpensBehindNothingAndFocused) {
    desktop.startProgram();
    const TestClient client =
        startClient(desktop.session(), ClientKind::xterm, QRect(400, 300, 900, 600));
    ASSERT_NE(client.window, 0U);
    waitUntilActive(client);
    chooseSettings();
    EXPECT_TRUE(isForward()) << standing();
}

TEST_P(SettingsUnder, ComesForwardFromBehindMinimisedAndFromAnotherDesktop) {
    desktop.startProgram();
    chooseSettings();
    ASSERT_TRUE(isForward());
    const XInspector::Window window = settings();

    const TestClient client =
        startClient(desktop.session(), ClientKind::xterm, QRect(400, 300, 900, 600));
    ASSERT_NE(client.window, 0U);
    use({QStringLiteral("windowactivate"), QString::number(client.window)});
    waitUntilActive(client);
    chooseSettings();
    EXPECT_TRUE(isForward()) << "from behind: " << standing();

    minimise(client);
    chooseSettings();
    EXPECT_TRUE(isForward()) << "from the taskbar: " << standing();

    sendToAnotherDesktop(client);
    chooseSettings();
    EXPECT_TRUE(isForward()) << "from another desktop: " << standing();
    EXPECT_EQ(settings(), window) << "it is the same window";
}

TEST(SettingsBesideATray, ComeForwardAlsoWhenTheItemWasMadeAnewAfterThem) {
    ShellDesktop desktop;
    desktop.startTray(TrayHost::systemTray);
    desktop.startProgram();
    const auto chooseSettings = [&] {
        const QRect panel = desktop.openPanel();
        desktop.input().click(ShellDesktop::settingsButton(panel));
        ASSERT_TRUE(desktop.waitForPanel(false));
        EXPECT_TRUE(waitUntil([&] {
            const auto window = desktop.settingsWindow();
            return window && desktop.inspector().activeWindow() == *window;
        })) << desktop.session().describe();
    };
    chooseSettings();
    desktop.startTray(TrayHost::systemTray);
    static_cast<void>(desktop.item());
    const TestClient client =
        startClient(desktop.session(), ClientKind::xterm, QRect(400, 300, 900, 600));
    ASSERT_NE(client.window, 0U);
    ASSERT_TRUE(waitUntil([&] { return desktop.inspector().activeWindow() == client.window; }));
    // Only what is asked for the right window brings it from another desktop.
    XInspector& look = desktop.inspector();
    const XInspector::Window settings = desktop.settingsWindow().value_or(0);
    for (const QStringList& arguments :
         {QStringList{QStringLiteral("set_num_desktops"), QStringLiteral("2")},
          QStringList{QStringLiteral("set_desktop_for_window"), QString::number(settings),
                      QStringLiteral("1")}})
        static_cast<void>(
            outputOf(QStringLiteral("xdotool"), arguments, desktop.session().environment()));
    ASSERT_TRUE(waitUntil([&] {
        return look.property(settings, "_NET_WM_DESKTOP") == std::vector<quint32>{1} &&
               look.activeWindow() == client.window;
    }));
    chooseSettings();
    EXPECT_EQ(desktop.settingsWindow(), settings) << "it is the same window";
}

// Not jwm, which goes on calling a window active after it went to another desktop: whether it came
// back from there cannot be told by that.
INSTANTIATE_TEST_SUITE_P(, SettingsUnder,
                         ::testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                           WindowManagerKind::kwin, WindowManagerKind::marco,
                                           WindowManagerKind::mutter, WindowManagerKind::muffin,
                                           WindowManagerKind::icewm, WindowManagerKind::fluxbox,
                                           WindowManagerKind::i3, WindowManagerKind::metacity),
                         [](const auto& parameter) { return std::string(name(parameter.param)); });

} // namespace tilewright::testing
