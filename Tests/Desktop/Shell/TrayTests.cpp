// The item and its panel under both kinds of tray hosts, used by hand.

#include "ShellDesktop.h"

#include <InputGrab.h>
#include <TestClients.h>
#include <Waiting.h>
#include <WindowManager/ZoneLayout.h>

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class UnderTrayHost : public ::testing::TestWithParam<TrayHost> {
protected:
    ShellDesktop desktop;
};

const char* hostName(TrayHost host) {
    return host == TrayHost::statusNotifier ? "StatusNotifier" : "SystemTray";
}

/// The zone's frame in the area that the bar leaves free, as the window manager tells it.
QRect frameOf(const Zone& zone, XInspector& look) {
    const std::vector<quint32> area = look.property(look.root(), "_NET_WORKAREA");
    if (area.size() < 4)
        return {};
    const auto edge = [](double value) { return static_cast<int>(std::lround(value)); };
    const int left = edge(area[0] + zone.x * area[2]);
    const int top = edge(area[1] + zone.y * area[3]);
    return {QPoint(left, top), QPoint(edge(area[0] + (zone.x + zone.width) * area[2]) - 1,
                                      edge(area[1] + (zone.y + zone.height) * area[3]) - 1)};
}

const char* const layoutsWithOneOfTheUsers = R"({"assignments":{},"customLayouts":[{
    "id":"6A1B2C3D-0000-4000-8000-000000000001","isBuiltIn":false,"name":"Mine",
    "systemImage":"rectangle.split.2x1","zones":[{"height":1,
    "id":"6A1B2C3D-0000-4000-8000-000000000002","name":"All","width":1,"x":0,"y":0}]}]})";

} // namespace

TEST_P(UnderTrayHost, ShowsTheItemAndOpensThePanelBesideIt) {
    desktop.startTray(GetParam());
    desktop.startProgram();
    const QPoint item = desktop.item();
    const QRect panel = desktop.openPanel();
    EXPECT_GE(panel.top(), 30);
    EXPECT_LE(panel.top(), 60);
    EXPECT_LE(panel.left(), item.x());
    EXPECT_GE(panel.right(), item.x());
    EXPECT_TRUE(QRect(0, 0, 1920, 1080).contains(panel));
}

TEST_P(UnderTrayHost, OpensAndClosesThePanelByClicksOnTheItemAndElsewhere) {
    desktop.startTray(GetParam());
    desktop.startProgram();
    for (int round = 0; round < 3; ++round) {
        desktop.openPanel();
        desktop.input().click(desktop.item());
        EXPECT_TRUE(desktop.waitForPanel(false)) << "by a second click";
        desktop.openPanel();
        desktop.input().click({1500, 900});
        EXPECT_TRUE(desktop.waitForPanel(false)) << "by a click elsewhere";
        desktop.openPanel();
        desktop.input().tapKey(keysym::escape);
        EXPECT_TRUE(desktop.waitForPanel(false)) << "by the escape key";
    }
}

TEST_P(UnderTrayHost, GivesThePanelTheKeyboardHoweverLateAnotherClientLetsGoOfIt) {
    desktop.startTray(GetParam());
    desktop.startProgram();
    static_cast<void>(desktop.item());
    InputGrab other(desktop.session().display());
    ASSERT_TRUE(other.takeKeyboard());
    desktop.openPanel();
    // The key goes to who holds the keyboard.
    desktop.input().tapKey(keysym::escape);
    EXPECT_TRUE(staysTrue([&] { return desktop.panel().has_value(); }, std::chrono::seconds(2)));
    other.letGo();
    EXPECT_TRUE(waitUntil([&] {
        desktop.input().tapKey(keysym::escape);
        return !desktop.panel().has_value();
    }));
}

TEST_P(UnderTrayHost, ShowsTheItemOnAHostThatStartsLaterAndOnEachThatFollows) {
    desktop.startProgram();
    for (int start = 0; start < 2; ++start) {
        desktop.startTray(GetParam());
        desktop.openPanel();
        desktop.input().tapKey(keysym::escape);
        EXPECT_TRUE(desktop.waitForPanel(false));
        desktop.killTray();
        EXPECT_TRUE(waitUntil([&] { return !desktop.showsItem(); }));
    }
}

TEST_P(UnderTrayHost, ShowsTheItemOnAHostOfTheOtherKind) {
    const TrayHost other =
        GetParam() == TrayHost::systemTray ? TrayHost::statusNotifier : TrayHost::systemTray;
    desktop.startTray(other);
    desktop.startProgram();
    static_cast<void>(desktop.item());
    desktop.startTray(GetParam());
    desktop.openPanel();
}

TEST_P(UnderTrayHost, SnapsTheWindowThatHadTheFocusIntoTheClickedZone) {
    desktop.startTray(GetParam());
    desktop.startProgram();
    static_cast<void>(desktop.item());
    const TestClient xterm =
        startClient(desktop.session(), ClientKind::xterm, QRect(600, 400, 500, 300));
    ASSERT_NE(xterm.window, 0U);
    ASSERT_TRUE(waitUntil([&] { return desktop.inspector().activeWindow() == xterm.window; }));
    const QRect panel = desktop.openPanel();
    EXPECT_EQ(desktop.inspector().activeWindow(), xterm.window) << "the focus stays";
    desktop.input().click(desktop.firstZone(panel));
    EXPECT_TRUE(waitUntil([&] {
        const QRect zone = frameOf(ZoneLayout::bentoBox().zones.front(), desktop.inspector());
        const QRect frame = desktop.inspector().outerFrame(xterm.window);
        // A terminal is a whole number of character cells high and wide.
        return frame.topLeft() == zone.topLeft() && zone.contains(frame) &&
               zone.width() - frame.width() < 20 && zone.height() - frame.height() < 20;
    })) << ::testing::PrintToString(desktop.inspector().outerFrame(xterm.window).top());
}

TEST_P(UnderTrayHost, AssignsTheLayoutOfAClickedCard) {
    desktop.startTray(GetParam());
    desktop.startProgram();
    const QRect panel = desktop.openPanel();
    desktop.input().click(desktop.card(panel, 0, 0));
    EXPECT_TRUE(waitUntil([&] {
        return desktop.layouts().contains("00000000-0000-0000-0000-000000000001");
    })) << desktop.layouts().constData();
}

TEST_P(UnderTrayHost, DeletesALayoutOfTheUsersByItsContextMenu) {
    desktop.writeLayouts(layoutsWithOneOfTheUsers);
    desktop.startTray(GetParam());
    desktop.startProgram();
    const QRect panel = desktop.openPanel();
    desktop.input().click(desktop.card(panel, 1, 2), 3);
    ASSERT_TRUE(desktop.layouts().contains("Mine"));
    // The menu's one item, by the keyboard, as soon as the menu is there to take it.
    EXPECT_TRUE(waitUntil([&] {
        desktop.input().tapKey(keysym::down);
        desktop.input().tapKey(keysym::enter);
        return !desktop.layouts().contains("Mine");
    }));
    EXPECT_TRUE(desktop.layouts().contains("customLayouts"));
}

TEST_P(UnderTrayHost, EndsTheSessionAndTheProcessOnQuit) {
    RecordingIdleService idle(desktop.session().busAddress());
    desktop.startTray(GetParam());
    Subprocess& program = desktop.startProgram();
    desktop.startSession();
    ASSERT_TRUE(waitUntil([&] { return idle.isInhibited(); }));
    const QRect panel = desktop.openPanel();
    desktop.input().click(ShellDesktop::quitButton(panel));
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(waitUntil([&] { return !idle.isInhibited(); }));
    EXPECT_EQ(idle.releases(), 1) << "it gave back what it held before it went";
}

TEST_P(UnderTrayHost, FillsTheItemsCupWhileASessionRunsAsSoonAsThePanelsSwitchIsUsed) {
    desktop.startTray(GetParam());
    desktop.startProgram();
    desktop.openPanel();
    // A bar may light up what lies below the pointer, and makes room for an item in steps.
    desktop.input().move({1500, 900});
    int outline = 0;
    ASSERT_TRUE(waitUntil([&] {
        outline = desktop.itemCoverage();
        return outline > 0 && staysTrue([&] { return desktop.itemCoverage() == outline; },
                                        std::chrono::milliseconds(150));
    }));
    desktop.input().tapKey(keysym::tab);
    desktop.input().tapKey(keysym::space);
    EXPECT_TRUE(waitUntil([&] { return desktop.itemCoverage() > outline * 5 / 4; }))
        << desktop.itemCoverage() << " pixels, and " << outline << " before";
    EXPECT_TRUE(desktop.panel().has_value()) << "the panel is still open";
    desktop.input().tapKey(keysym::space);
    EXPECT_TRUE(waitUntil([&] { return desktop.itemCoverage() == outline; }))
        << desktop.itemCoverage() << " pixels, and " << outline << " before";
    EXPECT_TRUE(desktop.panel().has_value());
}

INSTANTIATE_TEST_SUITE_P(, UnderTrayHost,
                         ::testing::Values(TrayHost::statusNotifier, TrayHost::systemTray),
                         [](const auto& parameter) { return hostName(parameter.param); });

} // namespace tilewright::testing
