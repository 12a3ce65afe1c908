// The whole program as one user meets it, from the first start to the last, with real input.

#include "Displays.h"
#include "DragScript.h"
#include "ShellUser.h"

#include <Waiting.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {
namespace {

class WholeProgram : public ::testing::Test {
protected:
    [[nodiscard]] QJsonObject stored() const {
        return QJsonDocument::fromJson(desktop.layouts()).object();
    }
    /// A zone of the user's only layout, as it is on disk.
    [[nodiscard]] Zone storedZone(int index) const {
        const QJsonObject zone =
            stored()[u"customLayouts"][0].toObject()[u"zones"][index].toObject();
        return {QUuid(zone[u"id"].toString()), zone[u"name"].toString(),
                zone[u"x"].toDouble(),         zone[u"y"].toDouble(),
                zone[u"width"].toDouble(),     zone[u"height"].toDouble()};
    }
    /// Drags a window into a zone with this key held, and waits until it fills the zone.
    void expectSnaps(Subprocess& process, const QString& modifier, const TestClient& client,
                     const Zone& zone) {
        RunningProgram program(desktop.session(), process, modifier);
        DragScript script(desktop.session(), program);
        const QRect frame = zoneFrame(zone, workArea(desktop.inspector()));
        script.run(client, KeyTiming::afterTheDragBegan, frame.center());
        expectFills(desktop.inspector(), ClientKind::qt, client, frame);
    }
    [[nodiscard]] QByteArray settingsFile() {
        QFile file(desktop.session().home() + u"/.config/Tilewright/Tilewright.conf"_s);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    ShellDesktop desktop;
    ShellUser user{desktop};
    const QString button = u"button"_s;
};

} // namespace

TEST_F(WholeProgram, IsUsedFromItsFirstStartToItsEnd) {
    RecordingIdleService idle(desktop.session().busAddress());
    desktop.startTray(TrayHost::systemTray);

    // A user who has never run it.
    ASSERT_FALSE(QFile::exists(desktop.layoutsFile()));
    ASSERT_TRUE(settingsFile().isEmpty());
    Subprocess* program = &user.startProgram();

    // Builds a layout: the left half, and the right one cut to its upper part.
    user.openSettings(u"Layouts"_s);
    user.click(button, u"New"_s);
    user.click(button, u"Add Zone"_s);
    const int up = user.place({}, u"Canvas"_s).frame.height() / 3;
    user.drag({}, u"Bottom right corner"_s, {0, -up});
    user.click(button, u"Save Layout"_s);
    ASSERT_TRUE(waitUntil([&] { return desktop.layouts().contains("My Layout"); }));
    ASSERT_EQ(stored()[u"customLayouts"][0].toObject()[u"zones"].toArray().size(), 2);
    EXPECT_NEAR(storedZone(1).height, 2.0 / 3, 0.06);
    EXPECT_TRUE(stored()[u"assignments"].toObject().isEmpty());
    user.closeSettings();

    // Gives it to the display, and a window to it.
    desktop.input().click(desktop.card(desktop.openPanel(), 1, 2));
    ASSERT_TRUE(waitUntil([&] { return stored()[u"assignments"].toObject().size() == 1; }));
    desktop.input().tapKey(keysym::escape);
    ASSERT_TRUE(desktop.waitForPanel(false));
    const TestClient client = startClient(desktop.session(), ClientKind::qt, {300, 300, 640, 420});
    ASSERT_NE(client.window, 0U);
    expectSnaps(*program, u"control"_s, client, storedZone(1));

    // Quits and starts it again: all is as it was.
    const QByteArray before = desktop.layouts();
    user.quit();
    program = &user.startProgram();
    expectSnaps(*program, u"control"_s, client, storedZone(0));
    EXPECT_EQ(desktop.layouts(), before);

    // Takes another key.
    user.openSettings(u"General"_s);
    user.chooseBelow(3);
    EXPECT_TRUE(waitUntil([&] { return settingsFile().contains("=command"); }));
    user.closeSettings();
    expectSnaps(*program, u"command"_s, client, storedZone(1));

    // Thinks better of deleting the layout once, then deletes it.
    user.openSettings(u"Manage"_s);
    user.click(button, u"Delete My Layout"_s);
    user.click(button, u"Cancel"_s);
    EXPECT_TRUE(waitUntil([&] { return !user.find(button, u"Cancel"_s); }));
    EXPECT_EQ(desktop.layouts(), before);
    user.click(button, u"Delete My Layout"_s);
    user.click(button, u"Delete"_s);
    ASSERT_TRUE(waitUntil([&] { return !desktop.layouts().contains("My Layout"); }));
    EXPECT_TRUE(stored()[u"assignments"].toObject().isEmpty());
    static_cast<void>(user.place(u"label"_s, u"Create layouts in the Layouts tab."_s));
    user.closeSettings();
    expectSnaps(*program, u"command"_s, client, ZoneLayout::bentoBox().zones.front());

    // Quits while the computer is kept awake.
    desktop.startSession();
    ASSERT_TRUE(waitUntil([&] { return idle.isInhibited(); }));
    user.quit();
    EXPECT_TRUE(waitUntil([&] { return !idle.isInhibited(); }));
    EXPECT_EQ(idle.releases(), 1) << "it gave back what it held before it went";
    EXPECT_TRUE(waitUntil([&] { return !desktop.showsItem(); }));
}

TEST(WholeProgramOnTwoDisplays, GoesOnWhenOneIsUnpluggedAndKnowsItWhenItComesBack) {
    DesktopSession desktop(XServer::twoOutputs());
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    assignLayouts(desktop, {ZoneLayout::thirds(), ZoneLayout::quadrants()});
    const std::vector<QRect> both = monitors(desktop);
    ASSERT_EQ(both.size(), 2U);
    RunningProgram program(desktop);
    DragScript script(desktop, program);
    const TestClient client = startClient(desktop, ClientKind::qt, {300, 300, 640, 420});
    ASSERT_NE(client.window, 0U);
    const auto drop = [&](const Zone& zone, const QRect& display) {
        const QRect frame = zoneFrame(zone, display);
        script.grab(client, KeyTiming::afterTheDragBegan);
        script.dragTo(frame.center());
        // The program hears of a display when the server tells it, not when the test asks.
        EXPECT_TRUE(waitUntil([&] {
            desktop.input().move(frame.center() + QPoint(2, 0));
            desktop.input().move(frame.center());
            return desktop.inspector().clientFrame(program.overlay()) == display;
        }));
        script.drop();
        expectFills(desktop.inspector(), ClientKind::qt, client, frame);
    };
    const auto plug = [&](const QStringList& how, std::size_t count) {
        static_cast<void>(outputOf(u"xrandr"_s, QStringList{u"--output"_s, u"DUMMY1"_s} + how,
                                   desktop.environment()));
        ASSERT_TRUE(waitUntil([&] { return monitors(desktop).size() == count; }));
    };
    drop(ZoneLayout::quadrants().zones[3], both[1]);
    drop(ZoneLayout::thirds().zones[1], both[0]);

    plug({u"--off"_s}, 1);
    drop(ZoneLayout::thirds().zones[2], monitors(desktop).front());
    EXPECT_TRUE(program.isRunning());

    plug({u"--auto"_s, u"--right-of"_s, u"DUMMY0"_s}, 2);
    drop(ZoneLayout::quadrants().zones[0], monitors(desktop)[1]);
    EXPECT_TRUE(program.isRunning());
}

} // namespace tilewright::testing
