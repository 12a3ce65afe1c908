// How often each operation waits for the X server: once for all that does not depend on an answer.

#include "SnapBench.h"

#include <BareClient.h>
#include <Tilewright/SnapController.h>

#include <map>
#include <set>
#include <unistd.h>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

class RoundTrips : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
        platform = std::make_unique<X11TestPlatform>(desktop.display());
        ASSERT_TRUE(waitUntil([&] { return platform->accessibility.isTrusted(); }));
        client = std::make_unique<BareClient>(
            desktop.display(), QRect(300, 200, 500, 300),
            BareClientTraits{{}, static_cast<quint32>(getpid()), false, 0});
        ASSERT_TRUE(activate(desktop, client->window()));
        ASSERT_TRUE(waitUntil([&] {
            const auto focused = systemWide().element(AXAttribute::focusedUIElement);
            return focused.value && windowOf(*focused.value) == client->window();
        }));
        const QRect frame = desktop.inspector().outerFrame(client->window());
        place = appKitCentre(*platform, frame);
        middle = AXPoint{double(frame.center().x()), double(frame.center().y())};
        element = WindowManager::shared().windowElementAtScreenPoint(place);
        ASSERT_TRUE(element.has_value());
        desktop.input().move(frame.center());
    }
    [[nodiscard]] AccessibilityElement systemWide() {
        return platform->accessibility.systemWideElement();
    }
    [[nodiscard]] AccessibilityElement application() {
        return platform->accessibility.applicationElement(getpid());
    }
    /// How many round trips a call makes before it returns. What it starts, and what happened
    /// before, is over first.
    template<class Call>
    [[nodiscard]] std::uint64_t of(Call call) {
        EXPECT_TRUE(settle(*platform));
        const std::uint64_t before = platform->connection().roundTrips();
        call();
        const std::uint64_t trips = platform->connection().roundTrips() - before;
        EXPECT_TRUE(settle(*platform));
        return trips;
    }

    DesktopSession desktop;
    std::unique_ptr<X11TestPlatform> platform;
    std::unique_ptr<BareClient> client;
    std::optional<AccessibilityElement> element;
    AppKitPoint place;
    AXPoint middle;
    const Zone zone = ZoneLayout::halves().zones[0];
};

} // namespace

TEST_F(RoundTrips, OfTheWindowManagersOperations) {
    WindowManager& manager = WindowManager::shared();
    const ScreenPtr screen = platform->screens.all().front();
    EXPECT_EQ(of([&] { EXPECT_TRUE(manager.isAccessibilityGranted()); }), 0U);
    EXPECT_EQ(of([&] { EXPECT_TRUE(manager.requestAccessibilityPermission()); }), 0U);
    EXPECT_EQ(of([&] { EXPECT_TRUE(WindowManager::screenWithMouse()); }), 1U);
    EXPECT_EQ(of([&] { EXPECT_TRUE(manager.windowElementAtScreenPoint(place)); }), 3U);
    EXPECT_EQ(of([&] { manager.snap(*element, zone, *screen); }), 1U);
    EXPECT_EQ(of([&] { manager.snapFocusedWindow(zone, screen); }), 3U);
    EXPECT_EQ(of([&] { manager.snapFocusedWindow(zone, nullptr); }), 4U);
    EXPECT_EQ(of([&] { manager.moveFocusedWindow({10, 20, 300, 200}); }), 3U);
}

TEST_F(RoundTrips, OfTheAccessibilityInterfacesOperations) {
    auto& accessibility = platform->accessibility;
    EXPECT_EQ(of([&] { EXPECT_TRUE(accessibility.isTrusted()); }), 0U);
    EXPECT_EQ(of([&] { EXPECT_TRUE(accessibility.requestTrust()); }), 0U);
    EXPECT_EQ(of([&] { static_cast<void>(systemWide()); }), 0U);
    EXPECT_EQ(of([&] { static_cast<void>(application()); }), 0U);
    EXPECT_EQ(of([&] { EXPECT_TRUE(accessibility.elementAtPosition(middle).value); }), 3U);
    EXPECT_EQ(of([&] { EXPECT_TRUE(accessibility.makeValue(AXPoint{1, 2})); }), 0U);
    EXPECT_EQ(of([&] { EXPECT_TRUE(accessibility.makeValue(AXSize{1, 2})); }), 0U);
}

TEST_F(RoundTrips, OfAnElementsReads) {
    const auto reads = [&](const AccessibilityElement& from, AXAttribute attribute) {
        return of([&] { EXPECT_TRUE(from.element(attribute).value) << nameOf(attribute); });
    };
    EXPECT_EQ(reads(systemWide(), AXAttribute::focusedUIElement), 1U);
    EXPECT_EQ(reads(application(), AXAttribute::focusedWindow), 1U);
    EXPECT_EQ(reads(*element, AXAttribute::window), 1U);
    EXPECT_EQ(reads(*element, AXAttribute::parent), 1U);
    for (const AXAttribute text : {AXAttribute::role, AXAttribute::subrole})
        EXPECT_EQ(of([&] { EXPECT_TRUE(element->string(text).value) << nameOf(text); }), 1U);
    ProcessID process = 0;
    EXPECT_EQ(of([&] { EXPECT_EQ(element->processID(process), AXError::success); }), 1U);
    EXPECT_EQ(of([&] { EXPECT_EQ(application().processID(process), AXError::success); }), 0U);
    EXPECT_EQ(of([&] { EXPECT_EQ(*element, *element); }), 0U);
}

TEST_F(RoundTrips, OfTheWritesOfOneTurnAreOne) {
    auto& accessibility = platform->accessibility;
    const auto position = accessibility.makeValue(AXPoint{40, 50});
    const auto size = accessibility.makeValue(AXSize{400, 300});
    const auto writes = [&] {
        std::vector<std::uint64_t> trips;
        for (const auto& [attribute, value] : {std::pair(AXAttribute::size, size.get()),
                                               std::pair(AXAttribute::position, position.get()),
                                               std::pair(AXAttribute::size, size.get())}) {
            const std::uint64_t before = platform->connection().roundTrips();
            EXPECT_EQ(element->setValue(attribute, *value), AXError::success);
            trips.push_back(platform->connection().roundTrips() - before);
        }
        EXPECT_TRUE(settle(*platform));
        return trips;
    };
    EXPECT_EQ(writes(), (std::vector<std::uint64_t>{1, 0, 0}));
    // The next turn knows nothing of it any more.
    EXPECT_EQ(writes(), (std::vector<std::uint64_t>{1, 0, 0}));
}

TEST_F(RoundTrips, OfAFailedSnapAreItsWritesAndItsDescription) {
    client->destroy();
    const Screen& screen = *platform->screens.all().front();
    // Three writes; the process, the role and the subrole.
    EXPECT_EQ(of([&] {
                  EXPECT_THROW(WindowManager::shared().snap(*element, zone, screen),
                               WindowManagerError);
              }),
              6U);
}

TEST_F(RoundTrips, OfTheDisplaysAndTheApplications) {
    EXPECT_EQ(of([&] { EXPECT_FALSE(platform->screens.all().empty()); }), 0U);
    EXPECT_EQ(of([&] { EXPECT_TRUE(platform->screens.main()); }), 2U);
    EXPECT_EQ(of([&] { static_cast<void>(platform->pointer.location()); }), 1U);
    EXPECT_EQ(of([&] { EXPECT_TRUE(platform->workspace.frontmostApplication()); }), 2U);
    EXPECT_EQ(of([&] { EXPECT_TRUE(platform->workspace.localizedName(getpid())); }), 2U);
}

namespace {

/// A whole drag that snaps, with the program's own controller.
class RoundTripsOfADrag : public RoundTrips {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(RoundTrips::SetUp());
        EventMonitors& monitors = platform->eventMonitors;
        SnapController::shared().start();
        // Installed after the controller's own, and so told after them.
        const auto note = [this](const Event& event) {
            trips[event.type] = platform->connection().roundTrips() - atRest;
        };
        ASSERT_TRUE(monitors.addGlobalMonitor(
            EventMask{EventType::leftMouseDown, EventType::leftMouseDragged, EventType::leftMouseUp,
                      EventType::flagsChanged},
            note));
        atRest = platform->connection().roundTrips();
    }
    /// How often the server was waited for from this input on until all have handled its event.
    template<class Input>
    [[nodiscard]] std::optional<std::uint64_t> of(EventType type, Input input) {
        rest();
        trips.clear();
        atRest = platform->connection().roundTrips();
        input();
        const bool isTold = waitUntil([&] { return trips.contains(type); });
        const auto told = isTold ? std::optional(trips[type]) : std::nullopt;
        rest();
        return told;
    }
    /// What has been asked of the server is answered, and handed out.
    void rest() {
        EXPECT_TRUE(settle(*platform));
        bool isAnswered = false;
        X11Connection& connection = platform->connection();
        const auto answer = connection.whenAnswered<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus(connection.xcb()), [&](const auto&) { isAnswered = true; });
        EXPECT_TRUE(waitUntil([&] { return isAnswered; }));
    }

    std::uint64_t atRest = 0;
    std::map<EventType, std::uint64_t> trips;
};

} // namespace

TEST_F(RoundTripsOfADrag, AreThoseOfItsWindowAndOfItsFrame) {
    XInputInjector& input = desktop.input();
    const QPoint start = desktop.inspector().outerFrame(client->window()).center();
    EXPECT_EQ(of(EventType::flagsChanged, [&] { input.pressKey(keysym::control); }), 0U);
    EXPECT_EQ(of(EventType::leftMouseDown, [&] { input.press(); }), 0U);
    EXPECT_EQ(of(EventType::leftMouseDragged, [&] { input.move(start + QPoint(10, 0)); }), 3U);
    EXPECT_TRUE(SnapController::shared().overlayVisible());
    EXPECT_EQ(of(EventType::leftMouseDragged, [&] { input.move(start + QPoint(20, 0)); }), 0U);
    EXPECT_EQ(of(EventType::leftMouseUp, [&] { input.release(); }), 0U);
    EXPECT_EQ(of(EventType::flagsChanged, [&] { input.releaseKey(keysym::control); }), 0U);
}

TEST_F(RoundTripsOfADrag, WhatWasAskedWithAReleaseThatSnapsNothingServesNoLaterSnap) {
    XInputInjector& input = desktop.input();
    input.pressKey(keysym::control);
    EXPECT_TRUE(of(EventType::leftMouseDown, [&] { input.press(); }));
    EXPECT_TRUE(of(EventType::leftMouseDragged, [&] {
        input.move(desktop.inspector().outerFrame(client->window()).center() + QPoint(10, 0));
    }));
    EXPECT_TRUE(SnapController::shared().overlayVisible());
    EXPECT_TRUE(of(EventType::flagsChanged, [&] { input.releaseKey(keysym::control); }));
    EXPECT_TRUE(of(EventType::leftMouseUp, [&] { input.release(); }));
    const ScreenPtr screen = platform->screens.all().front();
    EXPECT_EQ(RoundTrips::of([&] { WindowManager::shared().snap(*element, zone, *screen); }), 1U);
}

TEST_F(RoundTrips, OfAPressInAnotherApplicationAreNoneBesideAWindowOfOurs) {
    BareClient ours(desktop.display(), QRect(900, 200, 400, 300));
    BareClient hidden(desktop.display(), QRect(320, 220, 100, 100));
    ASSERT_TRUE(activate(desktop, client->window()));
    const std::set<xcb_window_t> own{ours.window(), hidden.window()};
    X11EventMonitors monitors(platform->connection(), platform->desktop().pointer(),
                              platform->desktop().movedWindows(), platform->desktop().frameSetter(),
                              {[&](xcb_window_t window) { return own.contains(window); },
                               {},
                               [&] { return std::vector<xcb_window_t>(own.begin(), own.end()); }});
    std::vector<std::string> heard;
    static_cast<void>(monitors.addGlobalMonitor({EventType::leftMouseDown},
                                                [&](const auto&) { heard.emplace_back("other"); }));
    static_cast<void>(monitors.addLocalMonitor({EventType::leftMouseDown},
                                               [&](const auto&) { heard.emplace_back("own"); }));
    const auto pressAt = [&](QPoint where) {
        desktop.input().move(where);
        heard.clear();
        const std::uint64_t trips = of([&] {
            desktop.input().press();
            EXPECT_TRUE(waitUntil([&] { return !heard.empty(); }));
        });
        desktop.input().release();
        return std::pair(heard.front(), trips);
    };
    using Press = std::pair<std::string, std::uint64_t>;
    const QRect theirs = desktop.inspector().outerFrame(client->window());
    EXPECT_EQ(pressAt(theirs.center()), Press("other", 0));
    // Over a window of ours that another one covers it takes a look at what is on top.
    const auto covered = pressAt({370, 270});
    EXPECT_EQ(covered.first, "other");
    EXPECT_EQ(pressAt(desktop.inspector().outerFrame(ours.window()).center()).first, "own");
}
