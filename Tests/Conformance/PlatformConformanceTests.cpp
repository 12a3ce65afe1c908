#include "PlatformWorld.h"

#include <QDir>
#include <QRegularExpression>
#include <set>

using namespace std::chrono_literals;

namespace tilewright::testing {

using namespace Qt::StringLiterals;

std::optional<AccessibilityElement> PlatformConformance::windowAt(AXPoint point) {
    auto element = platform().accessibility.elementAtPosition(point).value;
    for (int steps = 0; element && steps < 25; ++steps) {
        if (element->string(AXAttribute::role).value == QLatin1StringView(axWindowRole))
            return element;
        element = element->element(AXAttribute::parent).value;
    }
    return std::nullopt;
}

std::optional<AccessibilityElement> PlatformConformance::openKnownWindow() {
    process = world->openWindow(opened);
    std::optional<AccessibilityElement> window;
    EXPECT_TRUE(world->waitUntil([&] {
        window = windowAt(inside);
        return window && platform().workspace.frontmostApplication() == process;
    }));
    return window;
}

TEST_P(PlatformConformance, ListsTheDisplaysWithTheMainOneAmongThem) {
    const auto all = screens();
    ASSERT_FALSE(all.empty());
    // The primary display's corner is the origin.
    EXPECT_EQ(all.front()->frame().x, 0);
    EXPECT_EQ(all.front()->frame().y, 0);
    EXPECT_NE(std::find(all.begin(), all.end(), platform().screens.main()), all.end());
    static const QRegularExpression uuid(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s);
    for (const ScreenPtr& screen : all) {
        const AppKitRect frame = screen->frame();
        const AppKitRect visible = screen->visibleFrame();
        EXPECT_GT(visible.width, 0);
        EXPECT_GE(visible.minX(), frame.minX());
        EXPECT_GE(visible.minY(), frame.minY());
        EXPECT_LE(visible.maxX(), frame.maxX());
        EXPECT_LE(visible.maxY(), frame.maxY());
        EXPECT_FALSE(screen->localizedName().isEmpty());
        const QString text = screen->persistentUUID().value_or(QString());
        EXPECT_EQ(uuid.match(text).hasMatch(), screen->persistentUUID().has_value())
            << text.toStdString();
        EXPECT_EQ(screen->persistentUUID(), screen->persistentUUID());
    }
}

TEST_P(PlatformConformance, KeepsADisplaysObjectUntilTheDisplayChanges) {
    const ScreenPtr before = screens().front();
    const AppKitRect visible = before->visibleFrame();
    EXPECT_EQ(screens().front(), before);
    // What the list holds when a change of it is announced.
    ScreenPtr seen;
    QObject::connect(&platform().screens, &Screens::screensChanged, &platform().screens,
                     [&] { seen = screens().front(); });
    world->addPanel();
    ASSERT_TRUE(world->waitUntil(
        [&] { return seen && seen->visibleFrame().height == visible.height - 40; }));
    EXPECT_NE(seen, before);
    EXPECT_EQ(seen->frame(), before->frame());
    EXPECT_EQ(seen->displayID(), before->displayID());
    EXPECT_EQ(before->visibleFrame(), visible);
}

TEST_P(PlatformConformance, TellsWhereThePointerIs) {
    for (const AppKitPoint point : {AppKitPoint{100.5, 200.5}, AppKitPoint{0.5, 0.5}}) {
        world->movePointer(point);
        EXPECT_TRUE(world->waitUntil([&] { return platform().pointer.location() == point; }));
    }
}

TEST_P(PlatformConformance, ShowsEventsOfOtherApplicationsToGlobalMonitorsOnly) {
    ASSERT_TRUE(openKnownWindow());
    world->movePointer(middleOf(opened));
    std::vector<Event> global;
    int local = 0;
    EventMonitors& monitors = platform().eventMonitors;
    const EventMask mask{EventType::flagsChanged, EventType::leftMouseDragged,
                         EventType::leftMouseUp};
    const auto first =
        monitors.addGlobalMonitor(mask, [&](const Event& e) { global.push_back(e); });
    const auto second = monitors.addLocalMonitor(mask, [&](const Event&) { ++local; });
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    world->holdControl();
    ASSERT_TRUE(world->waitUntil([&] { return !global.empty(); }));
    EXPECT_EQ(global.back().type, EventType::flagsChanged);
    EXPECT_TRUE(global.back().modifierFlags.contains(ModifierFlag::control));
    EXPECT_FALSE(global.back().modifierFlags.contains(ModifierFlag::shift));
    world->releaseControl();
    ASSERT_TRUE(world->waitUntil(
        [&] { return !global.back().modifierFlags.contains(ModifierFlag::control); }));
    // The press is not in the mask.
    global.clear();
    world->pressButton();
    world->releaseButton();
    ASSERT_TRUE(world->waitUntil([&] { return !global.empty(); }));
    EXPECT_EQ(global.front().type, EventType::leftMouseUp);
    EXPECT_EQ(local, 0);
    monitors.removeMonitor(*first);
    monitors.removeMonitor(*second);
}

TEST_P(PlatformConformance, CallsNoHandlerOfAMonitorThatWasRemoved) {
    ASSERT_TRUE(openKnownWindow());
    world->movePointer(middleOf(opened));
    EventMonitors& monitors = platform().eventMonitors;
    const EventMask mask{EventType::flagsChanged};
    int removed = 0;
    int once = 0;
    int always = 0;
    const auto gone = monitors.addGlobalMonitor(mask, [&](const Event&) { ++removed; });
    std::optional<MonitorToken> self;
    self = monitors.addGlobalMonitor(mask, [&](const Event&) {
        ++once;
        monitors.removeMonitor(*self);
    });
    const auto stays = monitors.addGlobalMonitor(mask, [&](const Event&) { ++always; });
    ASSERT_TRUE(gone && self && stays);
    monitors.removeMonitor(*gone);
    monitors.removeMonitor(*gone);
    world->holdControl();
    ASSERT_TRUE(world->waitUntil([&] { return always == 1; }));
    world->releaseControl();
    ASSERT_TRUE(world->waitUntil([&] { return always == 2; }));
    EXPECT_EQ(removed, 0);
    EXPECT_EQ(once, 1);
    monitors.removeMonitor(*stays);
}

TEST_P(PlatformConformance, FindsTheWindowAtAPointAndWhoseItIs) {
    const auto window = openKnownWindow();
    ASSERT_TRUE(window);
    EXPECT_TRUE(platform().accessibility.isTrusted());
    ProcessID owner = 0;
    EXPECT_EQ(window->processID(owner), AXError::success);
    EXPECT_EQ(owner, process);
    EXPECT_EQ(*window, *windowAt(inside));
    const auto focused =
        platform().accessibility.applicationElement(process).element(AXAttribute::focusedWindow);
    ASSERT_TRUE(focused.value);
    EXPECT_EQ(focused.error, AXError::success);
    EXPECT_EQ(*focused.value, *window);
    EXPECT_FALSE(windowAt({900, 700}));
}

TEST_P(PlatformConformance, AnswersAnErrorAndNoValueForWhatAnElementDoesNotHave) {
    const auto window = openKnownWindow();
    ASSERT_TRUE(window);
    const auto text = window->string(AXAttribute::focusedWindow);
    EXPECT_NE(text.error, AXError::success);
    EXPECT_EQ(text.value, std::nullopt);
    const auto element = window->element(AXAttribute::focusedWindow);
    EXPECT_NE(element.error, AXError::success);
    EXPECT_EQ(element.value, std::nullopt);
}

TEST_P(PlatformConformance, MovesAndResizesAWindow) {
    const auto window = openKnownWindow();
    ASSERT_TRUE(window);
    Accessibility& accessibility = platform().accessibility;
    const WindowFrame wanted{{200, 150}, {500, 350}};
    const auto position = accessibility.makeValue(wanted.position);
    const auto size = accessibility.makeValue(wanted.size);
    ASSERT_TRUE(position && size);
    EXPECT_EQ(window->setValue(AXAttribute::size, *size), AXError::success);
    EXPECT_EQ(window->setValue(AXAttribute::position, *position), AXError::success);
    EXPECT_EQ(window->setValue(AXAttribute::size, *size), AXError::success);
    EXPECT_TRUE(world->waitUntil([&] { return world->windowFrame() == wanted; }));
}

TEST_P(PlatformConformance, AnswersErrorsOnceAWindowHasVanished) {
    const auto window = openKnownWindow();
    ASSERT_TRUE(window);
    const auto size = platform().accessibility.makeValue(AXSize{500, 350});
    world->closeWindow();
    ASSERT_TRUE(world->waitUntil([&] { return !windowAt(inside); }));
    EXPECT_NE(window->setValue(AXAttribute::size, *size), AXError::success);
    EXPECT_EQ(window->string(AXAttribute::role).value, std::nullopt);
    EXPECT_EQ(window->element(AXAttribute::parent).value, std::nullopt);
    ProcessID owner = -7;
    EXPECT_NE(window->processID(owner), AXError::success);
    EXPECT_EQ(owner, -7);
    EXPECT_EQ(*window, *window);
}

TEST_P(PlatformConformance, NamesTheApplicationThatTheUserWorksIn) {
    ASSERT_TRUE(openKnownWindow());
    const auto name = platform().workspace.localizedName(process);
    ASSERT_TRUE(name);
    EXPECT_FALSE(name->isEmpty());
    // No process has this number.
    EXPECT_EQ(platform().workspace.localizedName(0x7FFFFFFF), std::nullopt);
}

TEST_P(PlatformConformance, HoldsPowerAssertionsUntilTheyAreReleased) {
    PowerAssertions& assertions = platform().powerAssertions;
    const auto first = assertions.create(u"PreventUserIdleDisplaySleep"_s, 255, u"first"_s);
    EXPECT_EQ(first.status, 0);
    EXPECT_NE(first.id, 0U);
    const auto second = assertions.create(u"PreventUserIdleDisplaySleep"_s, 255, u"second"_s);
    EXPECT_EQ(second.status, 0);
    EXPECT_NE(second.id, first.id);
    assertions.release(second.id);
    assertions.release(first.id);
    // Unknown by now.
    assertions.release(first.id);
}

TEST_P(PlatformConformance, KeepsSettings) {
    UserDefaults& defaults = platform().userDefaults;
    EXPECT_EQ(defaults.string(u"conformance"_s), std::nullopt);
    for (const QString& value : {u"shift"_s, u"⌃ Control"_s, u""_s}) {
        defaults.setString(value, u"conformance"_s);
        EXPECT_EQ(defaults.string(u"conformance"_s), value);
    }
    EXPECT_EQ(defaults.string(u"another"_s), std::nullopt);
}

TEST_P(PlatformConformance, HasAnAbsoluteFolderForApplicationData) {
    const auto folder = platform().applicationSupport.folder();
    ASSERT_TRUE(folder);
    EXPECT_TRUE(QDir::isAbsolutePath(*folder));
}

TEST_P(PlatformConformance, RunsPostedTasksInOrderAndTimersUntilTheyAreInvalid) {
    MainLoop& loop = platform().mainLoop;
    const auto start = loop.now();
    std::vector<int> order;
    loop.post([&] { order.push_back(1); });
    loop.post([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    ASSERT_TRUE(world->waitUntil([&] { return order.size() == 2; }));
    EXPECT_EQ(order, (std::vector{1, 2}));
    int once = 0;
    int repeated = 0;
    int never = 0;
    loop.scheduleOnce(1ms, [&] { ++once; });
    loop.scheduleOnce(1ms, [&] { ++never; })->invalidate();
    const auto timer = loop.scheduleRepeating(1ms, [&] { ++repeated; });
    ASSERT_TRUE(world->waitUntil([&] { return repeated >= 3; }));
    EXPECT_TRUE(timer->isValid());
    timer->invalidate();
    EXPECT_FALSE(timer->isValid());
    EXPECT_EQ(once, 1);
    EXPECT_EQ(never, 0);
    EXPECT_GE(loop.now() - start, 3ms);
}

} // namespace tilewright::testing
