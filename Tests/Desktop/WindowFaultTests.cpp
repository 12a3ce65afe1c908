// Clients, window managers and servers that vanish or stop at the worst moment.

#include "SnapBench.h"

#include <BareClient.h>

#include <QSignalSpy>
#include <atomic>
#include <csignal>
#include <thread>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

struct FaultBench {
    explicit FaultBench(WindowManagerKind kind = WindowManagerKind::openbox) {
        EXPECT_TRUE(desktop.startWindowManager(kind));
        platform = std::make_unique<X11TestPlatform>(desktop.display());
        EXPECT_TRUE(waitUntil([&] { return platform->accessibility.isTrusted(); }));
    }

    /// A managed window of the test's own.
    std::unique_ptr<BareClient> makeClient() {
        auto client = std::make_unique<BareClient>(desktop.display(), QRect(300, 200, 500, 300));
        EXPECT_TRUE(waitUntil(
            [&] { return !desktop.inspector().property(client->window(), "WM_STATE").empty(); }));
        // Whether a new window gets the focus is the window manager's business.
        EXPECT_TRUE(activate(desktop, client->window()));
        return client;
    }
    [[nodiscard]] const Screen& screen() const { return *platform->screens.all().front(); }
    /// Does everything that is ever done to a window. What it comes to is the caller's business;
    /// no other exception than the window manager's own error may come out.
    void useWindow(QPoint place, const Zone& zone) {
        try {
            WindowManager& manager = WindowManager::shared();
            const auto element = manager.windowElementAtScreenPoint(
                appKitCentre(*platform, QRect(place, QSize(1, 1))));
            if (element)
                manager.snap(*element, zone, screen());
            manager.snapFocusedWindow(zone, nullptr);
        } catch (const WindowManagerError&) {
            ++errors;
        }
        EXPECT_TRUE(settle(*platform));
    }
    void expectNextSnapWorks() {
        const auto client = makeClient();
        const Zone zone = ZoneLayout::halves().zones[1];
        WindowManager::shared().snapFocusedWindow(zone, platform->screens.all().front());
        EXPECT_TRUE(waitUntil([&] {
            return desktop.inspector().outerFrame(client->window()) == pixelsOf(zone, screen());
        })) << "is "
            << text(desktop.inspector().outerFrame(client->window())) << ", active is "
            << desktop.inspector().activeWindow() << ", the client " << client->window();
        EXPECT_TRUE(settle(*platform));
    }

    DesktopSession desktop;
    std::unique_ptr<X11TestPlatform> platform;
    int errors = 0;
};

} // namespace

TEST(WindowFaults, AWindowDestroyedBeforeAnyOfOurRequestsCostsNothingButAnError) {
    FaultBench bench;
    bool wasDestroyed = true;
    int moment = 0;
    for (; wasDestroyed; ++moment) {
        const auto client = bench.makeClient();
        const QPoint place = bench.desktop.inspector().outerFrame(client->window()).center();
        int waits = 0;
        wasDestroyed = false;
        bench.platform->connection().setWaitObserver([&] {
            if (waits++ == moment) {
                client->destroy();
                wasDestroyed = true;
            }
        });
        bench.useWindow(place, ZoneLayout::halves().zones[static_cast<std::size_t>(moment % 2)]);
        bench.platform->connection().setWaitObserver({});
    }
    // The last round went through all moments without meeting the chosen one.
    EXPECT_GT(moment, 20);
    EXPECT_GT(bench.errors, 0);
    bench.expectNextSnapWorks();
}

TEST(WindowFaults, AWindowDestroyedAtARandomMomentCostsNothing) {
    FaultBench bench;
    for (int round = 0; round < 40; ++round) {
        const auto client = bench.makeClient();
        const QPoint place = bench.desktop.inspector().outerFrame(client->window()).center();
        std::thread killer([&, delay = round * 97 % 4000] {
            std::this_thread::sleep_for(std::chrono::microseconds(delay));
            client->destroy();
        });
        bench.useWindow(place, ZoneLayout::halves().zones[static_cast<std::size_t>(round % 2)]);
        killer.join();
    }
    bench.expectNextSnapWorks();
}

class StoppedClients : public ::testing::TestWithParam<WindowManagerKind> {};

TEST_P(StoppedClients, StopNobodyAndFillTheirZoneWhenTheyGoOn) {
    FaultBench bench(GetParam());
    const TestClient client =
        startClient(bench.desktop, ClientKind::gtkClientDecorated, QRect(300, 200, 600, 400));
    ASSERT_TRUE(activate(bench.desktop, client.window));
    client.process->signal(SIGSTOP);
    const Zone zone = ZoneLayout::halves().zones[0];
    WindowManager::shared().snapFocusedWindow(zone, bench.platform->screens.all().front());
    EXPECT_TRUE(settle(*bench.platform));
    bench.expectNextSnapWorks();
    client.process->signal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] {
        return bench.desktop.inspector().outerFrame(client.window) ==
               pixelsOf(zone, bench.screen());
    }));
}

INSTANTIATE_TEST_SUITE_P(Under, StoppedClients,
                         ::testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                           WindowManagerKind::kwin, WindowManagerKind::marco),
                         [](const auto& manager) { return std::string(name(manager.param)); });

TEST(WindowFaults, FollowsAWindowManagerThatDiesAndAnotherThatTakesItsPlace) {
    FaultBench bench;
    bench.expectNextSnapWorks();
    const auto client = bench.makeClient();
    const auto element = WindowManager::shared().windowElementAtScreenPoint(
        appKitCentre(*bench.platform, bench.desktop.inspector().outerFrame(client->window())));
    ASSERT_TRUE(element.has_value());
    bench.desktop.killWindowManager();
    // Nobody has told us yet, perhaps: the write itself finds out.
    const auto size = bench.platform->accessibility.makeValue(AXSize{300, 300});
    EXPECT_NE(element->setValue(AXAttribute::size, *size), AXError::success);
    EXPECT_TRUE(waitUntil([&] { return !bench.platform->accessibility.isTrusted(); }));
    EXPECT_THROW(
        WindowManager::shared().snap(*element, ZoneLayout::halves().zones[0], bench.screen()),
        WindowManagerError);
    ASSERT_TRUE(bench.desktop.startWindowManager(WindowManagerKind::xfwm4));
    EXPECT_TRUE(waitUntil([&] { return bench.platform->accessibility.isTrusted(); }));
    bench.expectNextSnapWorks();
}

TEST(WindowFaults, AServerHeldByAnotherClientIsWaitedForWithABoundOnly) {
    FaultBench bench;
    const auto client = bench.makeClient();
    const QPoint place = bench.desktop.inspector().outerFrame(client->window()).center();
    xcb_connection_t* holder = bench.desktop.inspector().connection();
    xcb_grab_server(holder);
    xcb_flush(holder);
    EXPECT_NE(bench.desktop.inspector().inputFocus(), ~0U); // A round trip: the grab holds.
    // Without a bound this would never come back.
    bench.useWindow(place, ZoneLayout::halves().zones[0]);
    xcb_ungrab_server(holder);
    xcb_flush(holder);
    bench.expectNextSnapWorks();
}

TEST(WindowFaults, AFrameAskedForWhileTheServerIsHeldIsSetWhenItIsFreeAgain) {
    FaultBench bench;
    const auto client = bench.makeClient();
    const auto element = WindowManager::shared().windowElementAtScreenPoint(
        appKitCentre(*bench.platform, bench.desktop.inspector().outerFrame(client->window())));
    ASSERT_TRUE(element.has_value());
    const Zone zone = ZoneLayout::halves().zones[1];
    QSignalSpy answersAgain(&bench.platform->connection(), &X11Connection::answersAgain);
    xcb_connection_t* holder = bench.desktop.inspector().connection();
    xcb_grab_server(holder);
    EXPECT_NE(bench.desktop.inspector().inputFocus(), ~0U); // A round trip: the grab holds.
    EXPECT_NO_THROW(WindowManager::shared().snap(*element, zone, bench.screen()));
    EXPECT_TRUE(bench.platform->connection().isStuck());
    // Nothing that could not be read has been taken for gone.
    EXPECT_TRUE(bench.platform->accessibility.isTrusted());
    EXPECT_EQ(bench.platform->screens.all().size(), 1U);
    EXPECT_EQ(answersAgain.count(), 0);
    xcb_ungrab_server(holder);
    xcb_flush(holder);
    EXPECT_TRUE(waitUntil([&] {
        return bench.desktop.inspector().outerFrame(client->window()) ==
               pixelsOf(zone, bench.screen());
    }));
    EXPECT_EQ(answersAgain.count(), 1);
    EXPECT_FALSE(bench.platform->connection().isStuck());
    EXPECT_TRUE(settle(*bench.platform));
}

TEST(WindowFaults, ALostServerIsToldOnceAndEveryCallFails) {
    FaultBench bench;
    const auto client = bench.makeClient();
    QSignalSpy lost(&bench.platform->connection(), &X11Connection::connectionLost);
    const auto element = bench.platform->accessibility.systemWideElement();
    bench.desktop.server().kill();
    EXPECT_TRUE(waitUntil([&] { return lost.count() == 1; }));
    EXPECT_FALSE(bench.platform->connection().isAlive());
    EXPECT_FALSE(bench.platform->accessibility.isTrusted());
    EXPECT_FALSE(element.element(AXAttribute::focusedUIElement).value.has_value());
    EXPECT_FALSE(bench.platform->accessibility.elementAtPosition({10, 10}).value.has_value());
    EXPECT_EQ(lost.count(), 1);
}
