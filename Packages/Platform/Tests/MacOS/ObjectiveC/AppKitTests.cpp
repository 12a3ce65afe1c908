// The backend's Objective-C files as they are, run over fake classes of Foundation and AppKit.

#include "FakeCocoa.h"

#include <FakeMacSystem.h>
#include <MacOS/AppKitActivity.h>
#include <MacOS/AppKitApplications.h>
#include <MacOS/AppKitEventMonitor.h>
#include <MacOS/AppKitHostWindow.h>
#include <MacOS/AppKitNotifications.h>
#include <MacOS/AppKitScreenList.h>
#include <MacOS/AppKitStatusItem.h>
#include <MacOS/MacApplicationSupport.h>
#include <MacOS/MacOverlaySurface.h>
#include <MacOS/MacPanelSurface.h>
#include <MacOS/MacPointer.h>
#include <MacOS/MacUserDefaults.h>

#include <gtest/gtest.h>
#include <thread>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;
using appkit::MonitorKind;

namespace {

constexpr EventMask dragMask{EventType::leftMouseUp, EventType::leftMouseDragged,
                             EventType::flagsChanged};

class AppKitFiles : public ::testing::Test {
protected:
    void TearDown() override {
        // What the fake displays describe themselves with; references are counted elsewhere.
        fakecf::reset();
    }
    [[nodiscard]] static WId idOf(FakeCocoa::Object view) { return reinterpret_cast<WId>(view); }

    FakeMacSystem system;
    FakeCocoa cocoa;
};

appkit::WindowProperties overlayProperties() {
    return {.level = MacOverlaySurface::level,
            .ignoresMouseEvents = true,
            .collectionBehavior = MacOverlaySurface::collectionBehavior};
}

appkit::WindowProperties panelProperties() {
    return {.styleMask = MacPanelSurface::styleMask,
            .level = MacPanelSurface::level,
            .collectionBehavior = MacPanelSurface::collectionBehavior,
            .isKeyPanel = true};
}

constexpr const char* wrongThread = "must be called on the main thread";

} // namespace

TEST_F(AppKitFiles, InstallMonitorsOfTheirKindForTheirMaskUntilTheyEnd) {
    std::vector<std::pair<EventType, quint32>> seen;
    const auto note = [&](const Event& event) {
        seen.emplace_back(event.type, event.modifierFlags.bits());
    };
    for (const MonitorKind kind : {MonitorKind::global, MonitorKind::local}) {
        const bool isGlobal = kind == MonitorKind::global;
        seen.clear();
        auto monitor = appkit::addMonitor(kind, dragMask, note);
        ASSERT_NE(monitor, nullptr);
        EXPECT_TRUE(cocoa.send(isGlobal, 6, 0x40000)) << "a local monitor takes nothing away";
        cocoa.send(!isGlobal, 6, 0x40000);
        cocoa.send(isGlobal, 1, 0);
        cocoa.send(isGlobal, 12, 0x100108);
        EXPECT_EQ(seen, (decltype(seen){{EventType::leftMouseDragged, 0x40000U},
                                        {EventType::flagsChanged, 0x100108U}}));
        monitor.reset();
        cocoa.send(isGlobal, 6, 0);
        EXPECT_EQ(seen.size(), 2U);
    }
    for (const auto& [object, monitor] : cocoa.monitors) {
        EXPECT_EQ(monitor.mask, 0x1044U);
        EXPECT_FALSE(monitor.isInstalled);
    }
}

TEST_F(AppKitFiles, KeepAHandlerThatEndsItsOwnMonitor) {
    std::unique_ptr<appkit::EventMonitor> monitor;
    const auto mark = std::make_shared<int>(7);
    int seen = 0;
    monitor = appkit::addMonitor(MonitorKind::local, dragMask, [&, mark](const Event&) {
        monitor.reset();
        seen = *mark;
    });
    EXPECT_TRUE(cocoa.send(false, 2, 0));
    EXPECT_EQ(seen, 7);
}

TEST_F(AppKitFiles, ListTheDisplaysInTheirOrderWithEverythingThatIsKnownOfThem) {
    cocoa.displays = {{{0, 0, 1440, 900}, {0, 70, 1440, 805}, 1, u"First"_s},
                      {{1440, -180, 1920, 1080}, {1440, -180, 1920, 1055}, 77, u"Second"_s}};
    const auto listed = appkit::screens();
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_EQ(listed[0],
              (appkit::ScreenFacts{{0, 0, 1440, 900}, {0, 70, 1440, 805}, 1U, u"First"_s}));
    EXPECT_EQ(listed[1],
              (appkit::ScreenFacts{
                  {1440, -180, 1920, 1080}, {1440, -180, 1920, 1055}, 77U, u"Second"_s}));
    EXPECT_EQ(appkit::mainScreen(), std::nullopt);
    cocoa.mainDisplay = 1;
    EXPECT_EQ(appkit::mainScreen(), listed[1]);
}

TEST_F(AppKitFiles, TellWhereThePointerIs) {
    cocoa.mouse = {12.5, 880.25};
    EXPECT_EQ(MacPointer().location(), (AppKitPoint{12.5, 880.25}));
}

TEST_F(AppKitFiles, MakeTheOverlaysWindowAsItIsDescribed) {
    const auto window = appkit::makeWindow(overlayProperties());
    const auto& native = cocoa.lastWindow();
    EXPECT_FALSE(native.isPanel);
    EXPECT_EQ(native.frame, AppKitRect());
    EXPECT_EQ(native.styleMask, 0U);
    EXPECT_EQ(native.backing, 2U);
    EXPECT_FALSE(native.defer);
    EXPECT_FALSE(native.isOpaque);
    EXPECT_TRUE(native.hasClearBackground);
    EXPECT_EQ(native.level, 1000);
    EXPECT_TRUE(native.ignoresMouse);
    EXPECT_EQ(native.behavior, 0x151U);
    EXPECT_FALSE(native.hasShadow);
    EXPECT_FALSE(native.isReleasedWhenClosed);
    EXPECT_FALSE(native.isOrderedIn);
}

TEST_F(AppKitFiles, HaveTheOverlaysViewFillItsWindowAtEverySize) {
    const auto view = cocoa.makeViewOfQt();
    const auto qtWindow = cocoa.views.at(view).window;
    auto window = appkit::makeWindow(overlayProperties());
    const auto made = cocoa.lastWindowMade;
    window->setContent(idOf(view));
    EXPECT_EQ(cocoa.windows.at(qtWindow).contentView, nullptr) << "Qt's own window lets it go";
    EXPECT_EQ(cocoa.views.at(view).superview, cocoa.windows.at(made).contentView);
    for (const AppKitRect& frame :
         {AppKitRect{0, 0, 1440, 900}, AppKitRect{1440, -180, 1920, 1080}}) {
        window->setFrame(frame);
        EXPECT_EQ(cocoa.windows.at(made).frame, frame);
        EXPECT_TRUE(cocoa.windows.at(made).wasDisplayed);
        EXPECT_EQ(cocoa.views.at(view).frame, (AppKitRect{0, 0, frame.width, frame.height}));
    }
    window->orderFrontRegardless();
    EXPECT_TRUE(cocoa.windows.at(made).isOrderedIn);
    EXPECT_FALSE(cocoa.windows.at(made).isKey);
    window->orderOut();
    EXPECT_FALSE(cocoa.windows.at(made).isOrderedIn);
    window->orderFrontRegardless();
    window.reset();
    EXPECT_FALSE(cocoa.windows.at(made).isOrderedIn);
    EXPECT_EQ(cocoa.views.at(view).superview, nullptr);
}

TEST_F(AppKitFiles, GiveThePanelTheKeysWhileAnotherApplicationIsTheActiveOne) {
    const auto view = cocoa.makeViewOfQt();
    auto panel = appkit::makeWindow(panelProperties());
    const auto made = cocoa.lastWindowMade;
    EXPECT_TRUE(cocoa.windows.at(made).isPanel);
    EXPECT_EQ(cocoa.windows.at(made).level, 25);
    panel->setContent(idOf(view));
    panel->setFrame({100, 200, 320, 240});
    EXPECT_EQ(cocoa.windows.at(made).contentView, view) << "or Qt hears nothing of the keyboard";
    EXPECT_EQ(cocoa.windows.at(made).firstResponder, view);
    EXPECT_EQ(cocoa.views.at(view).frame, (AppKitRect{0, 0, 320, 240}));
    panel->makeKeyAndOrderFront();
    EXPECT_TRUE(cocoa.windows.at(made).isKey);
    EXPECT_TRUE(cocoa.windows.at(made).isOrderedIn) << "also in a program that is not active";
    EXPECT_EQ(cocoa.forcedActivations, 0);
    panel.reset();
    EXPECT_FALSE(cocoa.windows.at(made).isKey);
    EXPECT_EQ(cocoa.windows.at(made).contentView, nullptr);
}

TEST_F(AppKitFiles, ShowTheItemWithItsTemplateImageAndItsName) {
    auto item = appkit::addStatusItem([] {});
    EXPECT_EQ(cocoa.item->length, -2) << "as wide as the bar is high";
    item->setTemplateImage("a picture", 18);
    EXPECT_EQ(cocoa.item->image, "a picture");
    EXPECT_EQ(cocoa.item->imageSize, (AppKitPoint{18, 18}));
    EXPECT_TRUE(cocoa.item->isTemplate);
    item->setAccessibleName(u"Tilewright"_s);
    EXPECT_EQ(cocoa.item->label, u"Tilewright"_s);
    EXPECT_EQ(cocoa.item->toolTip, u"Tilewright"_s);
    item->setHighlighted(true);
    EXPECT_TRUE(cocoa.item->isHighlighted);
    item->setHighlighted(false);
    EXPECT_FALSE(cocoa.item->isHighlighted);
    EXPECT_TRUE(cocoa.item->isInBar);
    item.reset();
    EXPECT_FALSE(cocoa.item->isInBar);
    EXPECT_FALSE(cocoa.item->click) << "its button calls nobody any more";
}

TEST_F(AppKitFiles, TellOfClicksOnTheItemAndWhereItIs) {
    int clicks = 0;
    const auto item = appkit::addStatusItem([&] { ++clicks; });
    cocoa.item->click();
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(item->frame(), std::nullopt);
    cocoa.item->place = AppKitRect{1200.5, 876, 24, 22};
    EXPECT_EQ(item->frame(), (AppKitRect{1200.5, 876, 24, 22}));
}

TEST_F(AppKitFiles, AnswerForTheApplicationsThatRun) {
    EXPECT_EQ(appkit::frontmostApplication(), std::nullopt);
    cocoa.applications = {{.process = 7, .name = u"Editor"_s}, {.process = 8}};
    cocoa.frontmost = 8;
    EXPECT_EQ(appkit::frontmostApplication(), 8);
    EXPECT_EQ(appkit::localizedNameOf(7), u"Editor"_s);
    EXPECT_EQ(appkit::localizedNameOf(8), std::nullopt);
    EXPECT_EQ(appkit::localizedNameOf(9), std::nullopt);
    EXPECT_FALSE(appkit::prefersReducedMotion());
    cocoa.reducesMotion = true;
    EXPECT_TRUE(appkit::prefersReducedMotion());
    appkit::openURL(u"x-apple.systempreferences:a"_s);
    appkit::openURL(QString());
    EXPECT_EQ(cocoa.openedURLs, std::vector<QString>{u"x-apple.systempreferences:a"_s});
}

TEST_F(AppKitFiles, ListTheInstancesOfTheProgramThatHaveNotEnded) {
    cocoa.applications = {
        {.process = 5, .bundle = u"org.tilewright.Tilewright"_s, .launchedAt = 20},
        {.process = 6, .bundle = u"org.example.Other"_s, .launchedAt = 1},
        {.process = 7, .bundle = u"org.tilewright.Tilewright"_s},
        {.process = 8,
         .bundle = u"org.tilewright.Tilewright"_s,
         .launchedAt = 5,
         .isTerminated = true}};
    EXPECT_TRUE(appkit::runningInstances().empty()) << "outside a bundle";
    cocoa.bundleIdentifier = u"org.tilewright.Tilewright"_s;
    const auto instances = appkit::runningInstances();
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(instances[0].process, 5);
    EXPECT_EQ(instances[0].launchedAt, 20);
    EXPECT_EQ(instances[1].process, 7);
    EXPECT_EQ(instances[1].launchedAt, std::numeric_limits<double>::infinity());
}

TEST_F(AppKitFiles, BringApplicationsForward) {
    appkit::activateThisApplication();
    EXPECT_EQ(cocoa.forcedActivations, 1);
    cocoa.applications = {{.process = 7}};
    appkit::activateApplication(9);
    EXPECT_TRUE(cocoa.madeRoomFor.empty());
    appkit::activateApplication(7);
    EXPECT_EQ(cocoa.madeRoomFor, std::vector<qint64>{7});
    // Before macOS 14 nobody is asked.
    cocoa.asksTheActiveApplication = false;
    appkit::activateApplication(7);
    EXPECT_EQ(cocoa.madeRoomFor, std::vector<qint64>{7});
    EXPECT_EQ(cocoa.applications[0].activations, (std::vector<quint64>{2, 2}));
}

TEST_F(AppKitFiles, ListenAtTheCenterThatAnnouncesUntilTheyStop) {
    using appkit::Notification;
    using Center = FakeCocoa::Center;
    struct Row {
        Notification notification;
        Center center;
        std::string name;
    };
    const std::vector<Row> rows{
        {Notification::screenParametersChanged, Center::application,
         "NSApplicationDidChangeScreenParametersNotification"},
        {Notification::applicationActivated, Center::workspace,
         "NSWorkspaceDidActivateApplicationNotification"},
        {Notification::displayOptionsChanged, Center::workspace,
         "NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification"},
        // Delivered while the program is not the active one.
        {Notification::accessibilityPermissionChanged, Center::distributed,
         "com.apple.accessibility.api"},
        {Notification::panelRequested, Center::distributed, "org.tilewright.Tilewright.ShowPanel"},
    };
    for (const Row& row : rows) {
        int heard = 0;
        auto observation = appkit::observe(row.notification, [&] { ++heard; });
        for (const Row& announced : rows)
            cocoa.announce(announced.center, announced.name);
        EXPECT_EQ(heard, 1) << row.name;
        observation.reset();
        EXPECT_TRUE(cocoa.observers.empty()) << row.name;
    }
}

TEST_F(AppKitFiles, MayEndAnObservationFromWithinItsCallback) {
    std::unique_ptr<appkit::Observation> observation;
    const auto mark = std::make_shared<int>(7);
    int seen = 0;
    observation = appkit::observe(appkit::Notification::applicationActivated, [&, mark] {
        observation.reset();
        seen = *mark;
    });
    cocoa.announce(FakeCocoa::Center::workspace, "NSWorkspaceDidActivateApplicationNotification");
    EXPECT_EQ(seen, 7);
}

TEST_F(AppKitFiles, HearOfBeingOpenedAgainOnceAppKitHasItsOwnHandlers) {
    int heard = 0;
    auto observation = appkit::observe(appkit::Notification::reopened, [&] { ++heard; });
    EXPECT_TRUE(cocoa.appleEvents.empty()) << "AppKit would replace it";
    cocoa.announce(FakeCocoa::Center::application, "NSApplicationWillFinishLaunchingNotification");
    // 'aevt', 'rapp'
    const std::pair<quint32, quint32> reopen{0x61657674, 0x72617070};
    ASSERT_TRUE(cocoa.appleEvents.contains(reopen));
    EXPECT_EQ(heard, 0);
    cocoa.appleEvents.at(reopen)();
    EXPECT_EQ(heard, 1);
    observation.reset();
    EXPECT_TRUE(cocoa.appleEvents.empty());
    EXPECT_TRUE(cocoa.observers.empty());
}

TEST_F(AppKitFiles, AskEveryInstanceForThePanelAtOnce) {
    appkit::requestPanel();
    EXPECT_EQ(cocoa.posted,
              (decltype(cocoa.posted){{"org.tilewright.Tilewright.ShowPanel", true}}));
}

TEST_F(AppKitFiles, HoldAnActivityThatKeepsOnlyThisProgramAwake) {
    auto activity = appkit::beginActivity(u"Dragging"_s);
    ASSERT_EQ(cocoa.activities.size(), 1U);
    const FakeCocoa::Activity& native = cocoa.activities.begin()->second;
    EXPECT_EQ(native.options, 0x00EFFFFFU) << "the computer may sleep when it would";
    EXPECT_EQ(native.reason, u"Dragging"_s);
    EXPECT_TRUE(native.isUnderWay);
    activity.reset();
    EXPECT_FALSE(native.isUnderWay);
}

TEST_F(AppKitFiles, KeepTextsOfEveryAlphabetInTheUserDefaults) {
    MacUserDefaults defaults;
    EXPECT_EQ(defaults.string(u"key"_s), std::nullopt);
    const QString text = u"⌃ Contrôle 𝄞"_s;
    defaults.setString(text, u"key"_s);
    EXPECT_EQ(cocoa.defaults, (std::map<QString, QString>{{u"key"_s, text}}));
    EXPECT_EQ(defaults.string(u"key"_s), text);
}

TEST_F(AppKitFiles, FindTheUsersApplicationSupportFolder) {
    EXPECT_EQ(MacApplicationSupport().folder(), std::nullopt);
    cocoa.supportFolder = u"/Users/a/Library/Application Support"_s;
    EXPECT_EQ(MacApplicationSupport().folder(), cocoa.supportFolder);
    EXPECT_EQ(cocoa.askedFolder, (std::pair<quint64, quint64>{14, 1}));
}

TEST_F(AppKitFiles, EndTheProgramWhereAppKitCallsBackOnAnotherThread) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto elsewhere = [](const std::function<void()>& call) { std::thread(call).join(); };
    const auto ignore = [](const Event&) {};
    const auto global = appkit::addMonitor(MonitorKind::global, dragMask, ignore);
    EXPECT_DEATH(elsewhere([&] { cocoa.send(true, 6, 0); }), wrongThread);
    const auto local = appkit::addMonitor(MonitorKind::local, dragMask, ignore);
    EXPECT_DEATH(elsewhere([&] { cocoa.send(false, 6, 0); }), wrongThread);
    const auto item = appkit::addStatusItem([] {});
    EXPECT_DEATH(elsewhere([&] { cocoa.item->click(); }), wrongThread);
    const auto observation = appkit::observe(appkit::Notification::panelRequested, [] {});
    EXPECT_DEATH(elsewhere([&] {
                     cocoa.announce(FakeCocoa::Center::distributed,
                                    "org.tilewright.Tilewright.ShowPanel");
                 }),
                 wrongThread);
}
