// The headless desktop itself: every window manager comes up, every client shows and can be seen.

#include <BareClient.h>
#include <DesktopSession.h>
#include <TestClients.h>
#include <Waiting.h>

#include <gtest/gtest.h>

using namespace tilewright::testing;

namespace {

/// Where a window is told that buttons were pressed and released in it, from its top-left corner.
class ButtonListener {
public:
    ButtonListener(const QString& display, XInspector::Window window)
        : client_(display) {
        const quint32 mask = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;
        xcb_change_window_attributes(client_.xcb(), window, XCB_CW_EVENT_MASK, &mask);
        client_.sync();
    }

    [[nodiscard]] const std::vector<QPoint>& places() {
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(client_.xcb())}) {
            const auto* button = reinterpret_cast<const xcb_button_press_event_t*>(event.get());
            places_.emplace_back(button->event_x, button->event_y);
        }
        return places_;
    }

private:
    XClient client_;
    std::vector<QPoint> places_;
};

} // namespace

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

TEST(HeadlessDesktopInput, ClicksInAQuickRowWhereItIsToldTo) {
    DesktopSession desktop;
    // It freezes the pointer with each press until it has looked at the window beneath.
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    const BareClient client(desktop.display(), QRect(300, 200, 500, 300));
    const QPoint corner = desktop.inspector().clientFrame(client.window()).topLeft();
    ButtonListener listener(desktop.display(), client.window());
    std::vector<QPoint> places;
    places.reserve(80);
    for (int i = 0; i < 40; ++i) {
        const QPoint place(20 + 10 * i, 20 + 5 * i);
        desktop.input().click(corner + place);
        // Pressed and released.
        places.insert(places.end(), 2, place);
    }
    EXPECT_TRUE(waitUntil([&] { return listener.places().size() >= places.size(); }));
    EXPECT_EQ(listener.places(), places);
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
