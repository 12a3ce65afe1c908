// The headless desktop itself: every window manager comes up, every client shows and can be seen.

#include <DesktopSession.h>
#include <TestClients.h>
#include <Waiting.h>

#include <gtest/gtest.h>

using namespace tilewright::testing;

class HeadlessDesktop : public ::testing::TestWithParam<WindowManagerKind> {};

TEST_P(HeadlessDesktop, ShowsEveryKindOfClient) {
    DesktopSession desktop;
    ASSERT_TRUE(desktop.startWindowManager(GetParam()));
    for (const ClientKind kind : {ClientKind::xterm, ClientKind::qt, ClientKind::gtkClientDecorated,
                                  ClientKind::fixedDialog}) {
        const TestClient client = startClient(desktop, kind, QRect(200, 150, 600, 400));
        ASSERT_NE(client.window, 0U) << name(kind);
        EXPECT_TRUE(waitUntil([&] {
            const QRect frame = desktop.inspector().outerFrame(client.window);
            return frame.width() > 100 && frame.height() > 100;
        })) << name(kind);
    }
}

INSTANTIATE_TEST_SUITE_P(Under, HeadlessDesktop,
                         ::testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                           WindowManagerKind::kwin, WindowManagerKind::marco,
                                           WindowManagerKind::metacity, WindowManagerKind::mutter,
                                           WindowManagerKind::muffin, WindowManagerKind::icewm,
                                           WindowManagerKind::fluxbox, WindowManagerKind::jwm,
                                           WindowManagerKind::i3),
                         [](const auto& parameter) { return std::string(name(parameter.param)); });

TEST(HeadlessDesktopInput, DragsAWindowByItsTitleBar) {
    DesktopSession desktop;
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    const TestClient client = startClient(desktop, ClientKind::qt, QRect(300, 200, 500, 300));
    const QRect before = desktop.inspector().outerFrame(client.window);
    const QPoint grip = before.topLeft() + QPoint(before.width() / 2, 8);
    desktop.input().move(grip);
    desktop.input().press();
    // The window manager may take the pointer a moment after the press, and miss the first moves.
    EXPECT_TRUE(waitUntil([&] {
        desktop.input().glide(grip, grip + QPoint(30, 20), 3);
        return desktop.inspector().outerFrame(client.window) != before;
    }));
    desktop.input().glide(grip + QPoint(30, 20), grip + QPoint(120, 80), 12);
    desktop.input().release();
    EXPECT_TRUE(waitUntil([&] {
        return desktop.inspector().outerFrame(client.window) == before.translated(120, 80);
    }));
}

TEST(HeadlessDesktopInput, SeesTwoOutputsOfADummyServer) {
    DesktopSession desktop(XServer::twoOutputs());
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    EXPECT_TRUE(waitUntil([&] {
        const QString monitors = outputOf(
            QStringLiteral("xrandr"), {QStringLiteral("--listmonitors")}, desktop.environment());
        return monitors.contains(QStringLiteral("DUMMY0")) &&
               monitors.contains(QStringLiteral("DUMMY1"));
    }));
}
