// Keep-awake on an X server that comes to a request only after it has been waited for in vain.

#include "KeepAwakeDesktop.h"

#include <FreeDesktop/InhibitingPowerAssertions.h>
#include <Platform/QtMainLoop.h>
#include <X11/X11ScreenSaver.h>

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using namespace tilewright;
using namespace tilewright::testing;

namespace {

class KeepAwakeOnALateServer : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(connection); }
    void TearDown() override { QDBusConnection::disconnectFromBus(bus.name()); }

    /// Another client has the server for itself from here on.
    void holdServer() {
        xcb_grab_server(holder);
        sync();
    }
    void letGoOfServer() {
        xcb_ungrab_server(holder);
        sync();
    }
    PowerAssertionResult create() {
        return assertions.create(u"PreventUserIdleDisplaySleep"_s, 255, u"test"_s);
    }

    KeepAwakeDesktop desktop;
    xcb_connection_t* const holder = desktop.session().inspector().connection();
    const std::unique_ptr<X11Connection> connection =
        X11Connection::open(desktop.session().display());
    const QDBusConnection bus =
        QDBusConnection::connectToBus(desktop.session().busAddress(), u"late server"_s);
    QtMainLoop loop;
    X11ScreenSaver screenSaver{*connection};
    MessageBus messageBus{bus};
    InhibitingPowerAssertions assertions{loop, &screenSaver, messageBus, messageBus};

private:
    void sync() {
        const X11Reply<xcb_get_input_focus_reply_t> answer(
            xcb_get_input_focus_reply(holder, xcb_get_input_focus(holder), nullptr));
        EXPECT_TRUE(answer);
    }
};

} // namespace

TEST_F(KeepAwakeOnALateServer, NothingStaysSuspendedWhereNoSessionCameOfIt) {
    holdServer();
    EXPECT_NE(create().status, 0);
    letGoOfServer();
    desktop.blankAfterOneSecond();
    EXPECT_TRUE(waitUntil([&] { return desktop.isBlanked(); }));
}

TEST_F(KeepAwakeOnALateServer, WhatItSuspendsTooLateIsKeptUntilTheSessionEnds) {
    const auto name = u"org.mate.ScreenSaver"_s;
    desktop.startService(name, {u"--path"_s, u"/org/mate/ScreenSaver"_s, u"--interface"_s, name});
    holdServer();
    PowerAssertionResult session;
    // A service that the machine keeps waiting may answer later than is waited for.
    EXPECT_TRUE(waitUntil([&] {
        session = create();
        return session.status == 0;
    }));
    letGoOfServer();
    desktop.blankAfterOneSecond();
    EXPECT_TRUE(staysTrue([&] { return !desktop.isBlanked(); }, 2s));
    assertions.release(session.id);
    EXPECT_TRUE(waitUntil([&] { return desktop.isBlanked(); }));
}

TEST_F(KeepAwakeOnALateServer, MoreThanAHeldServerTakesInIsNotWaitedForAndComesToItLater) {
    const auto name = u"org.mate.ScreenSaver"_s;
    desktop.startService(name, {u"--path"_s, u"/org/mate/ScreenSaver"_s, u"--interface"_s, name});
    KeepAwakeHost host(desktop.environment());
    // As its event loop begins, Qt waits for the server.
    EXPECT_FALSE(host.isActive());
    holdServer();
    // A socket takes some seventy writes that nobody reads.
    for (int times = 0; times < 100; ++times) {
        ASSERT_TRUE(host.startIndefinite());
        ASSERT_FALSE(host.deactivate());
    }
    EXPECT_TRUE(host.startIndefinite());
    letGoOfServer();
    desktop.blankAfterOneSecond();
    EXPECT_TRUE(staysTrue([&] { return !desktop.isBlanked(); }, 2s));
    EXPECT_FALSE(host.deactivate());
    EXPECT_TRUE(waitUntil([&] { return desktop.isBlanked(); }));
}

TEST_F(KeepAwakeOnALateServer, TheProgramGoesOnWhileTheServerIsHeldByTheClientThatGaveItTheFocus) {
    KeepAwakeHost host(desktop.environment(), {u"--window"_s});
    const XInspector& look = desktop.session().inspector();
    XInspector::Window window = 0;
    ASSERT_TRUE(waitUntil([&] {
        for (const XInspector::Window other : look.allWindows()) {
            if (look.processID(other) == host.pid() && look.isMapped(other))
                window = other;
        }
        return window != 0;
    }));
    EXPECT_FALSE(host.isFocused());
    holdServer();
    xcb_set_input_focus(holder, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    EXPECT_EQ(look.inputFocus(), window);
    EXPECT_TRUE(waitUntil([&] { return host.isFocused(); }));
    EXPECT_TRUE(host.isFocused());
    letGoOfServer();
}
