#include "DragScript.h"

#include <BareClient.h>
#include <InputGrab.h>
#include <Waiting.h>

#include <QFile>
#include <csignal>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

/// Drags under openbox while other programs do what they may: hold pointer and keyboard, hold the
/// server, wait for clicks.
struct SnapBesideOthers : ::testing::Test {
    void SetUp() override { ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox)); }

    /// Moves about with button and key held until the overlay shows: the program is up to date
    /// then.
    void moveUntilTheOverlayShows(RunningProgram& program, QPoint place) {
        EXPECT_TRUE(waitUntil([&] {
            desktop.input().move(place + QPoint(2, 0));
            desktop.input().move(place);
            return program.overlayShows();
        })) << desktop.describe();
    }
    TestClient openWindow() { return startClient(desktop, ClientKind::qt, {300, 200, 400, 300}); }
    /// Nothing sticks: moves without a button show nothing, and the next drag snaps.
    void expectNextDragSnaps(RunningProgram& program, const TestClient& client) {
        DragScript script(desktop, program);
        EXPECT_TRUE(waitUntil([&] { return !program.overlayShows(); })) << desktop.describe();
        desktop.input().move({1200, 900});
        const QRect zone = zoneFrame(ZoneLayout::bentoBox().zones[1], workArea(inspector));
        script.run(client, KeyTiming::beforeThePress, zone.center());
        expectFills(inspector, ClientKind::qt, client, zone);
    }

    DesktopSession desktop;
    XInspector& inspector = desktop.inspector();
};

TEST_F(SnapBesideOthers, APointerAndKeyboardGrabOverAWholeDragLeavesNothingStuck) {
    RunningProgram program(desktop);
    const TestClient client = openWindow();
    InputGrab locker(desktop.display());
    ASSERT_TRUE(locker.takePointer() && locker.takeKeyboard());
    desktop.input().move({1500, 900});
    program.pressKey();
    desktop.input().press();
    moveUntilTheOverlayShows(program, {1300, 700});
    desktop.input().release();
    program.releaseKey();
    locker.letGo();
    expectNextDragSnaps(program, client);
}

TEST_F(SnapBesideOthers, AGrabThatBeginsInMidDragAndEndsAfterItLeavesNothingStuck) {
    RunningProgram program(desktop);
    const TestClient client = openWindow();
    DragScript script(desktop, program);
    // In the window itself: nobody else has the pointer then, so that the locker can take it.
    desktop.input().move(inspector.clientFrame(client.window).center());
    program.pressKey();
    desktop.input().press();
    const QPoint here = desktop.input().position();
    moveUntilTheOverlayShows(program, here);
    InputGrab locker(desktop.display());
    // The program that was pressed on keeps the pointer until the button is up: a locker gets it at
    // that moment.
    program.releaseKey();
    desktop.input().release();
    ASSERT_TRUE(locker.takePointer() && locker.takeKeyboard()) << desktop.describe();
    EXPECT_TRUE(waitUntil([&] { return !program.overlayShows(); })) << desktop.describe();
    program.pressKey();
    desktop.input().press();
    moveUntilTheOverlayShows(program, here + QPoint(300, 200));
    locker.letGo();
    program.releaseKey();
    desktop.input().release();
    expectNextDragSnaps(program, client);
}

TEST_F(SnapBesideOthers, AServerHeldWhileTheButtonGoesUpLeavesNothingStuck) {
    RunningProgram program(desktop);
    const TestClient client = openWindow();
    DragScript script(desktop, program);
    const QRect zone = zoneFrame(ZoneLayout::bentoBox().zones[0], workArea(inspector));
    script.grab(client, KeyTiming::beforeThePress);
    script.dragTo(zone.center());
    // Held by the hand itself, which goes on meanwhile: longer than the program waits for an
    // answer.
    xcb_connection_t* holder = desktop.input().connection();
    xcb_grab_server(holder);
    desktop.input().release();
    desktop.input().releaseKey(program.key());
    EXPECT_TRUE(staysTrue([&] { return program.isRunning(); }, std::chrono::milliseconds(700)));
    xcb_ungrab_server(holder);
    xcb_flush(holder);
    // The key was let go last: the drop counts, late as it is heard of.
    script.expectOverlayGone();
    expectFills(inspector, ClientKind::qt, client, zone);
    expectNextDragSnaps(program, client);
}

TEST_F(SnapBesideOthers, AClickThroughTheOverlayReachesTheWindowBeneathIt) {
    RunningProgram program(desktop);
    const TestClient client = openWindow();
    BareClient beneath(desktop.display(), QRect(1200, 500, 300, 200));
    const XClient listener(desktop.display());
    const quint32 mask = XCB_EVENT_MASK_BUTTON_PRESS;
    xcb_change_window_attributes(listener.xcb(), beneath.window(), XCB_CW_EVENT_MASK, &mask);
    xcb_flush(listener.xcb());
    DragScript script(desktop, program);
    script.grab(client, KeyTiming::beforeThePress);
    // The overlay can only be clicked on when the drag that shows it is over: stop the program
    // before it hears of that.
    program.process().signal(SIGSTOP);
    script.releaseButton();
    script.releaseKey();
    ASSERT_TRUE(program.overlayShows());
    const QPoint place = inspector.clientFrame(beneath.window()).center();
    ASSERT_TRUE(inspector.clientFrame(program.overlay()).contains(place));
    desktop.input().click(place, 3);
    EXPECT_TRUE(waitUntil([&] {
        const XReply<xcb_generic_event_t> event(xcb_poll_for_event(listener.xcb()));
        return event && (event->response_type & 0x7f) == XCB_BUTTON_PRESS;
    })) << "the click does not arrive"
        << desktop.describe();
    EXPECT_TRUE(program.overlayShows());
    program.process().signal(SIGCONT);
    script.expectOverlayGone();
}

/// The bytes that a process shares with others in segments, as pictures for the X server are.
qint64 sharedBytes(pid_t process) {
    QFile maps(QStringLiteral("/proc/%1/maps").arg(process));
    if (!maps.open(QIODevice::ReadOnly))
        return -1;
    qint64 bytes = 0;
    const auto lines = maps.readAll().split('\n');
    for (const QByteArray& line : lines) {
        const auto words = line.simplified().split(' ');
        if (words.size() < 2 || !words[1].endsWith('s'))
            continue;
        const auto ends = words[0].split('-');
        bytes += ends[1].toLongLong(nullptr, 16) - ends[0].toLongLong(nullptr, 16);
    }
    return bytes;
}

TEST_F(SnapBesideOthers, TheOverlaysPixelsServeTheNextDragAndAreGivenUpAWhileLater) {
    RunningProgram program(desktop);
    const TestClient client = openWindow();
    DragScript script(desktop, program);
    const QSize screen = inspector.screenSize();
    const qint64 picture = qint64{4} * screen.width() * screen.height();
    const QRect zone = zoneFrame(ZoneLayout::bentoBox().zones[0], workArea(inspector));
    ASSERT_GE(sharedBytes(program.pid()), 0);
    for (int drag = 0; drag < 3; ++drag) {
        script.grab(client, KeyTiming::beforeThePress);
        script.dragTo(zone.center());
        EXPECT_TRUE(waitUntil([&] { return sharedBytes(program.pid()) >= picture; }))
            << "shared " << sharedBytes(program.pid()) << " bytes";
        script.drop();
        expectFills(inspector, ClientKind::qt, client, zone);
        EXPECT_LT(sharedBytes(program.pid()), 2 * picture) << "one picture for all drags";
    }
    EXPECT_TRUE(waitUntil([&] { return sharedBytes(program.pid()) < picture / 10; },
                          std::chrono::minutes(1)))
        << "shared " << sharedBytes(program.pid()) << " bytes";
}

} // namespace
} // namespace tilewright::testing
