// The monitors of input by themselves, on a real X server with real input.

#include <DesktopSession.h>
#include <Waiting.h>
#include <X11/X11EventMonitors.h>
#include <X11TestPlatform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

using namespace tilewright;
using namespace tilewright::testing;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

namespace {

constexpr EventMask all{EventType::leftMouseDown, EventType::leftMouseUp,
                        EventType::leftMouseDragged, EventType::flagsChanged};

/// Where PC keyboards have F5.
constexpr std::uint8_t f5 = 71;

struct EventMonitorsAlone : ::testing::Test {
    EventMonitorsAlone() {
        const std::uint8_t xinput = platform.connection().xinput().majorOpcode;
        for (const int number : {XCB_INPUT_RAW_BUTTON_PRESS, XCB_INPUT_RAW_BUTTON_RELEASE,
                                 XCB_INPUT_RAW_MOTION, XCB_INPUT_RAW_KEY_PRESS})
            listeners.push_back(platform.connection().listen(
                X11EventFilter::generic(xinput, static_cast<std::uint16_t>(number)),
                [this](const auto&) { ++rawEvents; }));
        listeners.push_back(platform.connection().listen(
            X11EventFilter::type(platform.connection().xkb().firstEvent),
            [this](const auto&) { ++keyEvents; }));
    }
    MonitorToken watch(EventMask mask = all) {
        return monitors
            .addGlobalMonitor(mask,
                              [this](const Event& event) {
                                  types.push_back(event.type);
                                  flags = event.modifierFlags;
                                  place = platform.pointer.location();
                              })
            .value();
    }
    /// What the server has sent so far has been handed out.
    void catchUp() {
        bool isAnswered = false;
        const auto answer = platform.connection().whenAnswered<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus(platform.connection().xcb()),
            [&](const auto&) { isAnswered = true; });
        ASSERT_TRUE(waitUntil([&] { return isAnswered; }));
    }
    bool hasHeard(EventType type) const {
        return std::find(types.begin(), types.end(), type) != types.end();
    }

    DesktopSession desktop;
    XInputInjector& input = desktop.input();
    X11TestPlatform platform{desktop.display()};
    X11EventMonitors monitors{platform.connection(),
                              platform.desktop().pointer(),
                              platform.desktop().movedWindows(),
                              platform.desktop().frameSetter(),
                              {}};
    std::vector<X11Listener> listeners;
    std::vector<EventType> types;
    ModifierFlags flags;
    AppKitPoint place;
    int rawEvents = 0;
    int keyEvents = 0;
};

TEST_F(EventMonitorsAlone, HearNothingBeforeTheFirstMonitorAndAfterTheLast) {
    const auto useEverything = [&] {
        input.move({100, 100});
        input.press();
        input.pressKey(keysym::control);
        input.move({120, 120});
        input.releaseKey(keysym::control);
        input.release();
        catchUp();
    };
    useEverything();
    EXPECT_EQ(rawEvents + keyEvents, 0);
    const MonitorToken first = watch();
    const MonitorToken second = watch();
    monitors.removeMonitor(first);
    useEverything();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseUp); }));
    monitors.removeMonitor(second);
    // What was on its way when the last one went.
    catchUp();
    const int before = rawEvents + keyEvents;
    EXPECT_GT(before, 0);
    useEverything();
    EXPECT_EQ(rawEvents + keyEvents, before);
}

TEST_F(EventMonitorsAlone, HearOfMotionOnlyWhileTheLeftButtonIsHeld) {
    watch();
    input.glide({100, 100}, {400, 400}, 50);
    input.press(3);
    input.move({420, 420});
    input.release(3);
    catchUp();
    const int withoutButton = rawEvents;
    // The right button's own press and release.
    EXPECT_EQ(withoutButton, 2);
    input.press();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseDown); }));
    // Motion is heard of from here on.
    catchUp();
    input.move({440, 440});
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseDragged); }));
    input.release();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseUp); }));
    catchUp();
    const int afterDrag = rawEvents;
    input.glide({440, 440}, {100, 100}, 50);
    catchUp();
    EXPECT_EQ(rawEvents, afterDrag);
}

TEST_F(EventMonitorsAlone, TellOfAModifierOnlyWhereOneChanged) {
    watch(EventMask{EventType::flagsChanged});
    input.pressKey(keysym::control);
    ASSERT_TRUE(waitUntil([&] { return types.size() == 1; }));
    EXPECT_TRUE(flags.contains(ModifierFlag::control));
    // An ordinary key, and a button: no modifier of ours changes.
    input.tapKey('a');
    input.click({200, 200});
    input.releaseKey(keysym::control);
    ASSERT_TRUE(waitUntil([&] { return types.size() == 2; }));
    EXPECT_FALSE(flags.contains(ModifierFlag::control));
    catchUp();
    EXPECT_EQ(types.size(), 2U);
}

TEST_F(EventMonitorsAlone, HearOfOrdinaryKeysOnlyWhileTheLeftButtonIsHeld) {
    watch();
    input.tapKey('a');
    input.tapKey(keysym::escape);
    input.press(3);
    input.tapKey('a');
    input.release(3);
    catchUp();
    // The right button's own press and release.
    EXPECT_EQ(rawEvents, 2);
    input.press();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseDown); }));
    // Keys are heard of from here on.
    catchUp();
    input.tapKey('a');
    input.release();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseUp); }));
    catchUp();
    const int afterDrag = rawEvents;
    EXPECT_EQ(afterDrag, 5);
    input.tapKey('a');
    input.tapKey(keysym::escape);
    catchUp();
    EXPECT_EQ(rawEvents, afterDrag);
    EXPECT_THAT(types, Not(Contains(EventType::flagsChanged)));
}

TEST_F(EventMonitorsAlone, TellOfNoModifierFromEscapeUntilTheButtonIsLetGo) {
    watch();
    input.pressKey(keysym::control);
    input.press();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseDown); }));
    EXPECT_TRUE(flags.contains(ModifierFlag::control));
    catchUp();
    types.clear();
    input.tapKey(keysym::escape);
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::flagsChanged); }));
    EXPECT_EQ(flags, ModifierFlags());
    input.move({300, 300});
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseDragged); }));
    EXPECT_EQ(flags, ModifierFlags());
    types.clear();
    input.release();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::flagsChanged); }));
    EXPECT_TRUE(flags.contains(ModifierFlag::control));
    EXPECT_THAT(types, ElementsAre(EventType::leftMouseUp, EventType::flagsChanged));
    input.releaseKey(keysym::control);
}

TEST_F(EventMonitorsAlone, FollowTheKeyThatBearsEscape) {
    watch();
    static_cast<void>(outputOf(QStringLiteral("xmodmap"),
                               {QStringLiteral("-e"), QStringLiteral("keycode 71 = Escape")},
                               desktop.environment()));
    input.pressKey(keysym::control);
    input.press();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseDown); }));
    catchUp();
    types.clear();
    xcb_test_fake_input(input.connection(), XCB_KEY_PRESS, f5, 0, XCB_NONE, 0, 0, 0);
    xcb_test_fake_input(input.connection(), XCB_KEY_RELEASE, f5, 0, XCB_NONE, 0, 0, 0);
    xcb_flush(input.connection());
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::flagsChanged); }));
    EXPECT_EQ(flags, ModifierFlags());
    input.release();
    input.releaseKey(keysym::control);
}

TEST_F(EventMonitorsAlone, ManyMovesThatWaitTogetherAreOneAndThePlaceIsTheLast) {
    watch();
    input.press();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseDown); }));
    // Motion is heard of from here on.
    catchUp();
    types.clear();
    // Nobody turns the loop meanwhile: they wait together, the release behind them.
    input.glide({100, 100}, {700, 500}, 300);
    input.release();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseUp); }));
    EXPECT_THAT(types, ElementsAre(EventType::leftMouseDragged, EventType::leftMouseUp));
    const double height = platform.screens.all().front()->frame().height;
    EXPECT_EQ(place.x, 700.5);
    EXPECT_EQ(place.y, height - 500.5);
}

TEST_F(EventMonitorsAlone, TellTheLocalOnesAloneOfADragAndAKeyInAnOwnWindow) {
    // Made by the hand itself, so that it is there before the hand moves on.
    xcb_connection_t* maker = input.connection();
    const xcb_window_t root = platform.connection().root();
    const xcb_window_t window = xcb_generate_id(maker);
    const std::uint32_t isOverride = 1;
    xcb_create_window(maker, XCB_COPY_FROM_PARENT, window, root, 300, 300, 400, 300, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      &isOverride);
    xcb_map_window(maker, window);
    X11EventMonitors split{platform.connection(),
                           platform.desktop().pointer(),
                           platform.desktop().movedWindows(),
                           platform.desktop().frameSetter(),
                           {[window](xcb_window_t other) { return other == window; },
                            {},
                            [window] { return std::vector<xcb_window_t>{window}; }}};
    std::vector<EventType> ofOthers;
    std::vector<EventType> own;
    split.addGlobalMonitor(all, [&](const Event& event) { ofOthers.push_back(event.type); });
    split.addLocalMonitor(all, [&](const Event& event) { own.push_back(event.type); });
    const auto dragWithTheKey = [&](QPoint from, std::uint32_t focus,
                                    const std::vector<EventType>& heard) {
        xcb_set_input_focus(maker, XCB_INPUT_FOCUS_POINTER_ROOT, focus, XCB_CURRENT_TIME);
        const auto hasHeardLast = [&](EventType type) {
            return waitUntil([&] { return !heard.empty() && heard.back() == type; });
        };
        input.move(from);
        input.pressKey(keysym::control);
        EXPECT_TRUE(hasHeardLast(EventType::flagsChanged));
        input.press();
        EXPECT_TRUE(hasHeardLast(EventType::leftMouseDown));
        // Motion is heard of from here on.
        catchUp();
        input.move(from + QPoint(20, 20));
        EXPECT_TRUE(hasHeardLast(EventType::leftMouseDragged));
        input.release();
        EXPECT_TRUE(hasHeardLast(EventType::leftMouseUp));
        input.releaseKey(keysym::control);
        EXPECT_TRUE(hasHeardLast(EventType::flagsChanged));
    };
    const auto wholeDrag =
        ElementsAre(EventType::flagsChanged, EventType::leftMouseDown, EventType::leftMouseDragged,
                    EventType::leftMouseUp, EventType::flagsChanged);
    dragWithTheKey({400, 400}, window, own);
    EXPECT_THAT(own, wholeDrag);
    EXPECT_TRUE(ofOthers.empty());
    own.clear();
    dragWithTheKey({100, 100}, XCB_INPUT_FOCUS_POINTER_ROOT, ofOthers);
    EXPECT_THAT(ofOthers, wholeDrag);
    EXPECT_TRUE(own.empty());
}

TEST_F(EventMonitorsAlone, APressDuringAGrabOfOursIsOursAndNoLaterOneIs) {
    bool hasGrab = true;
    X11EventMonitors split{platform.connection(),
                           platform.desktop().pointer(),
                           platform.desktop().movedWindows(),
                           platform.desktop().frameSetter(),
                           {{}, [&] { return hasGrab; }, {}}};
    std::vector<std::string> heard;
    split.addGlobalMonitor(all, [&](const Event&) { heard.emplace_back("other"); });
    split.addLocalMonitor(all, [&](const Event&) { heard.emplace_back("own"); });
    const auto click = [&] {
        input.press();
        input.release();
        const std::size_t before = heard.size();
        ASSERT_TRUE(waitUntil([&] { return heard.size() == before + 2; }));
    };
    click();
    // A wheel is pressed as well, and tells nothing.
    input.press(4);
    input.release(4);
    catchUp();
    hasGrab = false;
    click();
    EXPECT_THAT(heard, ElementsAre("own", "own", "other", "other"));
}

TEST_F(EventMonitorsAlone, TellOnceForEachPressThatADragWithTheKeyIsAhead) {
    std::vector<AppKitPoint> told;
    monitors.onDragAhead([&](AppKitPoint at) { told.push_back(at); });
    watch();
    const auto pressMoveAndRelease = [&] {
        types.clear();
        input.move({300, 300});
        input.press();
        ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseDown); }));
        for (int i = 1; i < 4; ++i) {
            input.move({300 + i, 300});
            catchUp();
        }
        input.release();
        ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseUp); }));
    };
    pressMoveAndRelease();
    EXPECT_TRUE(told.empty()) << "no key is held, and no window moves";
    input.pressKey(keysym::control);
    pressMoveAndRelease();
    EXPECT_EQ(told.size(), 1U);
    pressMoveAndRelease();
    ASSERT_EQ(told.size(), 2U);
    input.releaseKey(keysym::control);
    pressMoveAndRelease();
    EXPECT_EQ(told.size(), 2U);
    EXPECT_EQ(told.front(),
              platform.desktop().screens().coordinates().toAppKit(NativePixel{300, 300}));
}

TEST_F(EventMonitorsAlone, TellThatADragIsAheadWhenAWindowMovesWithTheButtonHeld) {
    int told = 0;
    monitors.onDragAhead([&](AppKitPoint) { ++told; });
    watch();
    // Made by the hand itself, so that it is there before the hand moves on.
    xcb_connection_t* maker = input.connection();
    const xcb_window_t window = xcb_generate_id(maker);
    xcb_create_window(maker, XCB_COPY_FROM_PARENT, window, platform.connection().root(), 100, 100,
                      200, 200, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(maker, window);
    input.move({600, 600});
    input.press();
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseDown); }));
    // The place that it comes from is not told of.
    for (const std::uint32_t x : {120U, 140U})
        xcb_configure_window(maker, window, XCB_CONFIG_WINDOW_X, &x);
    EXPECT_TRUE(waitUntil([&] {
        input.move({601, 600});
        input.move({600, 600});
        return told > 0;
    }));
    EXPECT_EQ(told, 1);
    input.release();
}

TEST_F(EventMonitorsAlone, AMonitorMayRemoveItselfInItsHandler) {
    int calls = 0;
    std::optional<MonitorToken> own;
    own = monitors.addGlobalMonitor(all, [&](const Event&) {
        ++calls;
        monitors.removeMonitor(*own);
    });
    const MonitorToken other = watch();
    input.click({300, 300});
    ASSERT_TRUE(waitUntil([&] { return hasHeard(EventType::leftMouseUp); }));
    EXPECT_EQ(calls, 1);
    monitors.removeMonitor(other);
}

TEST_F(EventMonitorsAlone, AnAnswerComesBetweenTheEventsBeforeAndAfterItsRequest) {
    std::vector<std::string> order;
    const xcb_window_t root = platform.connection().root();
    const X11Listener listener =
        platform.connection().listen(X11EventFilter::window(root), [&](const auto& event) {
            if (eventType(event) == XCB_CLIENT_MESSAGE)
                order.push_back(
                    std::to_string(eventAs<xcb_client_message_event_t>(event).data.data32[0]));
        });
    const auto interest =
        platform.desktop().selection().select(root, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const auto send = [&](std::uint32_t number) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = root;
        message.data.data32[0] = number;
        xcb_send_event(platform.connection().xcb(), 0, root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       static_cast<const char*>(static_cast<const void*>(&message)));
    };
    send(1);
    const auto answer = platform.connection().whenAnswered<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus(platform.connection().xcb()),
        [&](const auto& reply) { order.push_back(reply ? "answer" : "none"); });
    send(2);
    {
        // Nobody wants this one any more.
        const auto dropped = platform.connection().whenAnswered<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus(platform.connection().xcb()),
            [&](const auto&) { order.emplace_back("unwanted"); });
    }
    send(3);
    platform.connection().flush();
    ASSERT_TRUE(waitUntil([&] { return order.size() >= 4; }));
    EXPECT_THAT(order, ElementsAre("1", "answer", "2", "3"));
}

} // namespace
