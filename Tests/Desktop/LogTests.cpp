// What the program tells for a user's report, where it is asked to.

#include "SnapBench.h"

#include <BareClient.h>
#include <KeptMessages.h>
#include <gmock/gmock.h>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace {

struct Log : ::testing::Test {
    Log() { EXPECT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox)); }

    /// Finds a window, and sets it to the left half.
    void snap() {
        X11TestPlatform platform(desktop.display());
        EXPECT_TRUE(waitUntil([&] { return platform.accessibility.isTrusted(); }));
        const BareClient client(desktop.display(), QRect(300, 200, 500, 300));
        window = client.window();
        const QRect frame = desktop.inspector().outerFrame(window);
        const auto element =
            WindowManager::shared().windowElementAtScreenPoint(appKitCentre(platform, frame));
        ASSERT_TRUE(element.has_value());
        const Zone& zone = ZoneLayout::halves().zones[0];
        const Screen& screen = *platform.screens.all().front();
        goal = pixelsOf(zone, screen);
        WindowManager::shared().snap(*element, zone, screen);
        EXPECT_TRUE(waitUntil([&] { return desktop.inspector().outerFrame(window) == goal; }));
        EXPECT_TRUE(settle(platform));
    }

    DesktopSession desktop;
    XInspector::Window window = 0;
    QRect goal;
};

} // namespace

TEST_F(Log, TellsNothingUnlessItIsAskedTo) {
    const KeptMessages messages;
    snap();
    EXPECT_EQ(messages.of("tilewright"), QStringList());
}

TEST_F(Log, TellsOfAFrameThatWasAskedForAndOfWhatCameOfIt) {
    const KeptMessages messages(u"tilewright.*=true"_s);
    snap();
    const QString frames = messages.of("tilewright.x11.frames").join(u'\n');
    const QString name = u"Window 0x"_s + QString::number(window, 16);
    const QString where = QString::fromStdString(text(goal));
    EXPECT_TRUE(frames.contains(name + u" is to fill "_s + where + u" and fills "_s))
        << frames.toStdString();
    EXPECT_TRUE(frames.contains(name + u": asked the window manager for the corner +0+0"_s))
        << frames.toStdString();
    EXPECT_TRUE(frames.contains(name + u" fills "_s + where + u" in the end, asked for "_s + where +
                                u": as asked"_s))
        << frames.toStdString();
    EXPECT_TRUE(
        messages.of("tilewright.x11.displays").join(u'\n').contains(u", free of panels "_s));
}

TEST_F(Log, TellsOfButtonsAndModifierKeysAndOfNoOtherKey) {
    const KeptMessages messages(u"tilewright.x11.input=true"_s);
    X11TestPlatform platform(desktop.display());
    const BareClient client(desktop.display(), QRect(300, 200, 500, 300));
    int heard = 0;
    ASSERT_TRUE(platform.eventMonitors.addGlobalMonitor(
        {EventType::leftMouseDown, EventType::leftMouseDragged, EventType::leftMouseUp,
         EventType::flagsChanged},
        [&](const Event&) { ++heard; }));
    XInputInjector& input = desktop.input();
    const auto hear = [&](int count, const auto& act) {
        act();
        return waitUntil([&] { return heard >= count; });
    };
    input.move({400, 300});
    input.tapKey(U'a');
    ASSERT_TRUE(hear(1, [&] { input.pressKey(keysym::control); }));
    ASSERT_TRUE(hear(2, [&] { input.press(); }));
    ASSERT_TRUE(hear(3, [&] { input.move({420, 320}); }));
    ASSERT_TRUE(hear(4, [&] { input.move({440, 340}); }));
    ASSERT_TRUE(hear(5, [&] { input.release(); }));
    ASSERT_TRUE(hear(6, [&] { input.releaseKey(keysym::control); }));
    input.tapKey(U'b');
    ASSERT_TRUE(hear(7, [&] { input.pressKey(keysym::shift); }));
    ASSERT_TRUE(hear(8, [&] { input.releaseKey(keysym::shift); }));
    const auto line = [](const QString& what, const QString& held) {
        return u"In another application: "_s + what + u". Modifiers held: "_s + held;
    };
    EXPECT_THAT(messages.of("tilewright.x11.input"),
                ElementsAre(line(u"modifier keys changed"_s, u"Control"_s),
                            line(u"left button pressed"_s, u"Control"_s),
                            line(u"moved with the left button held"_s, u"Control"_s),
                            line(u"left button released"_s, u"Control"_s),
                            line(u"modifier keys changed"_s, u"none"_s),
                            line(u"modifier keys changed"_s, u"Shift"_s),
                            line(u"modifier keys changed"_s, u"none"_s)));
}
