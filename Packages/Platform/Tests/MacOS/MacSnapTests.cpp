// A drag to a zone through the real adapters: the snap controller, the overlay's window, the
// settings.

#include "MacTestPlatform.h"

#include <Tilewright/SnapController.h>
#include <Tilewright/SnapSettings.h>
#include <WindowManager/LayoutStore.h>

#include <QFileInfo>
#include <QWidget>
#include <gtest/gtest.h>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;
using appkit::MonitorKind;

namespace {

/// Two displays side by side with a gap between them and a menu bar on top of the first. The first
/// shows Bento Box, the second Halves. A window lies wherever the pointer is, another one has the
/// focus.
class MacSnap : public ::testing::Test {
protected:
    MacSnap() {
        appKit.screens = {makeFacts({0, 0, 1440, 900}, 1, 25),
                          makeFacts({1500, -200, 1920, 1080}, 2)};
        appKit.mainScreen = 0;
        system.displayUUIDs[2] = u"37D8832A-2D66-02CA-B9F7-8F30A301B230"_s;
        system.elementAt = [this](AXPoint) { return window; };
        const auto field = FakeMacSystem::makeElement("field");
        field->attributes["AXWindow"] = focused;
        system.systemWide->attributes["AXFocusedUIElement"] = field;
        LayoutStore::shared().assign(ZoneLayout::halves(), *desktop.platform.screens.all()[1]);
        SnapController::shared().start();
    }

    void send(const Event& event) { appKit.send(MonitorKind::global, event); }
    void setModifiers(ModifierFlags flags) {
        held = flags;
        send({EventType::flagsChanged, flags});
    }
    void pressModifier() { setModifiers({ModifierFlag::control}); }
    void releaseModifier() { setModifiers({}); }
    void dragTo(AppKitPoint point) {
        appKit.mouse = point;
        send({EventType::leftMouseDragged, held});
    }
    void release() { send({EventType::leftMouseUp, held}); }

    [[nodiscard]] static const SnapOverlayModel& model() {
        return SnapController::shared().overlayModel();
    }
    /// The overlay's window; null before it is first needed.
    [[nodiscard]] std::shared_ptr<FakeAppKit::Window> overlay() const {
        return appKit.windows.empty() ? nullptr : appKit.windows.front();
    }
    /// The size of the view in the overlay's window.
    [[nodiscard]] QSize contentSize() const {
        const QWidget* content = QWidget::find(overlay()->content.value_or(0));
        return content ? content->size() : QSize();
    }
    [[nodiscard]] bool isOverlayShown() const { return overlay() && overlay()->isShown; }
    [[nodiscard]] static bool isUntouched(const MacNode& node) {
        return node.position == AXPoint{} && node.size == AXSize{};
    }

    ModifierFlags held;
    MacDesktop desktop;
    FakeMacSystem& system = desktop.system;
    FakeAppKit& appKit = desktop.appKit;
    const std::shared_ptr<MacNode> window = FakeMacSystem::makeWindow("window");
    const std::shared_ptr<MacNode> focused = FakeMacSystem::makeWindow("focused");
};

constexpr AppKitPoint inFirst{400, 400};
constexpr AppKitPoint betweenScreens{1470, 400};
constexpr AppKitPoint inLeftHalfOfSecond{1800, 300};
constexpr AppKitPoint inRightHalfOfSecond{3000, 300};

} // namespace

TEST_F(MacSnap, WatchesWithOneMonitorOfEachKindForTheThreeEvents) {
    ASSERT_EQ(appKit.monitors.size(), 2U);
    for (const auto& [id, monitor] : appKit.monitors)
        EXPECT_EQ(monitor.mask.value(), 0x1044U);
    EXPECT_NE(appKit.monitors.begin()->second.kind, appKit.monitors.rbegin()->second.kind);
    SnapController::shared().start();
    EXPECT_EQ(appKit.monitors.size(), 2U);
    SnapController::shared().stop();
    EXPECT_TRUE(appKit.monitors.empty());
}

TEST_F(MacSnap, MakesTheOverlaysWindowWithEveryPropertyOfIt) {
    pressModifier();
    EXPECT_EQ(overlay(), nullptr);
    dragTo(inFirst);
    ASSERT_NE(overlay(), nullptr);
    const appkit::WindowProperties& properties = overlay()->properties;
    EXPECT_EQ(properties.styleMask, 0U);
    EXPECT_EQ(properties.backing, 2U);
    EXPECT_FALSE(properties.defer);
    EXPECT_FALSE(properties.opaque);
    EXPECT_EQ(properties.level, 1000);
    EXPECT_TRUE(properties.ignoresMouseEvents);
    EXPECT_EQ(properties.collectionBehavior, 0x151U);
    EXPECT_FALSE(properties.hasShadow);
    EXPECT_FALSE(properties.releasedWhenClosed);
    EXPECT_TRUE(overlay()->content.has_value());
}

TEST_F(MacSnap, PlacesTheOverlayOnTheFullFrameBeforeItIsShownWithoutActivation) {
    pressModifier();
    dragTo(inFirst);
    EXPECT_EQ(overlay()->frame, (AppKitRect{0, 0, 1440, 900}));
    EXPECT_EQ(overlay()->calls,
              (std::vector<std::string>{"setContent", "setFrame", "orderFrontRegardless"}));
    EXPECT_TRUE(isOverlayShown());
    EXPECT_EQ(appKit.activations, 0);
    const QWidget* content = QWidget::find(*overlay()->content);
    ASSERT_NE(content, nullptr);
    EXPECT_EQ(content->size(), QSize(1440, 900));
    EXPECT_TRUE(content->testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_TRUE(content->testAttribute(Qt::WA_ShowWithoutActivating));
}

TEST_F(MacSnap, SnapsTheWindowUnderThePointerIntoTheZoneUnderIt) {
    pressModifier();
    dragTo(inFirst);
    EXPECT_TRUE(isUntouched(*window));
    release();
    // The first zone of Bento Box, in the visible frame.
    const Zone& zone = ZoneLayout::bentoBox().zones.front();
    EXPECT_EQ(window->position, (AXPoint{zone.x * 1440, 25 + zone.y * 875}));
    EXPECT_EQ(window->size, (AXSize{zone.width * 1440, zone.height * 875}));
    EXPECT_TRUE(isUntouched(*focused));
    EXPECT_FALSE(isOverlayShown());
}

TEST_F(MacSnap, LeavesNoAnimationBehindWhereNobodySeesIt) {
    for (int drag = 0; drag < 2; ++drag) {
        pressModifier();
        dragTo(inFirst);
        const QWidget* content = QWidget::find(*overlay()->content);
        ASSERT_NE(content, nullptr);
        EXPECT_TRUE(content->isVisible());
        EXPECT_TRUE(model().highlightedZoneID().has_value());
        release();
        EXPECT_FALSE(content->isVisible());
        desktop.platform.loop().runPosted();
        EXPECT_EQ(desktop.platform.loop().activeTimerCount(), 0U);
    }
}

TEST_F(MacSnap, FollowsTheDragToAnotherDisplayWithOneWindow) {
    pressModifier();
    dragTo(inFirst);
    dragTo(inLeftHalfOfSecond);
    EXPECT_EQ(appKit.windows.size(), 1U);
    EXPECT_EQ(overlay()->frame, (AppKitRect{1500, -200, 1920, 1080}));
    EXPECT_EQ(model().layout().name, ZoneLayout::halves().name);
    dragTo(inRightHalfOfSecond);
    release();
    EXPECT_EQ(window->position, (AXPoint{2460, 20}));
    EXPECT_EQ(window->size, (AXSize{960, 1080}));
}

TEST_F(MacSnap, FillsEachDisplayWithTheViewAsItCrossesThem) {
    pressModifier();
    dragTo(inFirst);
    EXPECT_EQ(contentSize(), QSize(1440, 900));
    dragTo(inLeftHalfOfSecond);
    EXPECT_EQ(contentSize(), QSize(1920, 1080));
    dragTo(inFirst);
    EXPECT_EQ(contentSize(), QSize(1440, 900));
    release();
    // Once more with a view that is hidden while it is placed.
    pressModifier();
    dragTo(inRightHalfOfSecond);
    EXPECT_EQ(contentSize(), QSize(1920, 1080));
}

TEST_F(MacSnap, StaysOnTheLastDisplayInAGapBetweenThem) {
    pressModifier();
    dragTo(inFirst);
    dragTo(betweenScreens);
    EXPECT_TRUE(isOverlayShown());
    EXPECT_EQ(overlay()->frame, (AppKitRect{0, 0, 1440, 900}));
}

TEST_F(MacSnap, HidesAndSnapsNothingWhenTheModifierIsReleasedFirst) {
    pressModifier();
    dragTo(inFirst);
    releaseModifier();
    EXPECT_FALSE(isOverlayShown());
    EXPECT_EQ(overlay()->calls.back(), "orderOut");
    release();
    EXPECT_TRUE(isUntouched(*window) && isUntouched(*focused));
    EXPECT_TRUE(overlay()->isAlive);
}

TEST_F(MacSnap, SnapsTheFocusedWindowAfterTheModifierWasReleasedAndPressedAgain) {
    pressModifier();
    dragTo(inFirst);
    releaseModifier();
    dragTo(inFirst);
    pressModifier();
    dragTo(inFirst);
    EXPECT_TRUE(isOverlayShown());
    release();
    EXPECT_TRUE(isUntouched(*window));
    EXPECT_FALSE(isUntouched(*focused));
}

TEST_F(MacSnap, SnapsTheFocusedWindowWhereNoWindowWasUnderThePointer) {
    system.elementAt = nullptr;
    pressModifier();
    dragTo(inFirst);
    release();
    EXPECT_FALSE(isUntouched(*focused));
}

TEST_F(MacSnap, DoesNothingWithoutTheModifierOrWithoutADrag) {
    dragTo(inFirst);
    release();
    pressModifier();
    release();
    EXPECT_EQ(overlay(), nullptr);
    EXPECT_TRUE(isUntouched(*window) && isUntouched(*focused));
}

TEST_F(MacSnap, DoesNothingOnAPlainDragAfterTheModifiersReleaseWasLost) {
    pressModifier();
    // Locked with a combination of keys that holds it: nobody tells that it is let go.
    held = {};
    dragTo(inFirst);
    release();
    EXPECT_EQ(overlay(), nullptr);
    EXPECT_TRUE(isUntouched(*window) && isUntouched(*focused));
}

TEST_F(MacSnap, CapturesADragAlsoWhenTheModifierComesLater) {
    dragTo(inFirst);
    pressModifier();
    dragTo(inFirst);
    release();
    EXPECT_FALSE(isUntouched(*window));
}

TEST_F(MacSnap, PromptsForThePermissionOnceInARun) {
    system.isTrusted = false;
    for (int i = 0; i < 3; ++i) {
        pressModifier();
        dragTo(inFirst);
        release();
    }
    EXPECT_EQ(system.prompts.size(), 1U);
    EXPECT_TRUE(isUntouched(*window));
}

TEST_F(MacSnap, FollowsDisplaysThatAreRearrangedDuringTheDrag) {
    pressModifier();
    dragTo(inLeftHalfOfSecond);
    // The second display moves and changes its resolution; nothing has been announced yet.
    appKit.screens[1] = makeFacts({1440, 0, 1000, 800}, 2);
    dragTo(inLeftHalfOfSecond);
    EXPECT_EQ(overlay()->frame, (AppKitRect{1440, 0, 1000, 800}));
    EXPECT_EQ(contentSize(), QSize(1000, 800));
    EXPECT_EQ(model().layout().name, ZoneLayout::halves().name);
    appKit.announce(appkit::Notification::screenParametersChanged);
    release();
    EXPECT_EQ(window->position, (AXPoint{1440, 100}));
    EXPECT_EQ(window->size, (AXSize{500, 800}));
}

TEST_F(MacSnap, FollowsToTheDisplayThatIsLeftWhenOneIsUnpluggedDuringTheDrag) {
    pressModifier();
    dragTo(inLeftHalfOfSecond);
    appKit.screens.pop_back();
    appKit.announce(appkit::Notification::screenParametersChanged);
    desktop.platform.loop().runPosted();
    // AppKit moves the pointer too.
    dragTo(inFirst);
    EXPECT_EQ(overlay()->frame, (AppKitRect{0, 0, 1440, 900}));
    release();
    EXPECT_EQ(window->position.x, 0);
}

TEST_F(MacSnap, LosesNothingWhenEveryDisplayIsGoneForAMoment) {
    pressModifier();
    dragTo(inFirst);
    const auto before = appKit.screens;
    appKit.screens.clear();
    appKit.announce(appkit::Notification::screenParametersChanged);
    dragTo(inFirst);
    appKit.screens = before;
    dragTo(inFirst);
    release();
    EXPECT_FALSE(isUntouched(*window));
}

TEST_F(MacSnap, KeepsTheModifierUnderItsKeyInTheDefaults) {
    EXPECT_EQ(SnapSettings::shared().modifier(), SnapModifier::control);
    EXPECT_TRUE(appKit.defaults.empty());
    SnapSettings::shared().setModifier(SnapModifier::option);
    EXPECT_EQ(appKit.defaults,
              (std::map<QString, QString>{{u"snapActivationModifier"_s, u"option"_s}}));
    pressModifier();
    dragTo(inFirst);
    EXPECT_EQ(overlay(), nullptr);
    setModifiers({ModifierFlag::option, ModifierFlag::control});
    dragTo(inFirst);
    EXPECT_TRUE(isOverlayShown());
    release();
}

TEST(MacSnapSettings, ReadTheModifierFromTheDefaults) {
    const std::map<QString, SnapModifier> rows{{u"command"_s, SnapModifier::command},
                                               {u"shift"_s, SnapModifier::shift},
                                               {u"Command"_s, SnapModifier::control},
                                               {u""_s, SnapModifier::control}};
    for (const auto& [stored, modifier] : rows) {
        MacDesktop desktop;
        desktop.appKit.defaults[u"snapActivationModifier"_s] = stored;
        EXPECT_EQ(SnapSettings::shared().modifier(), modifier) << stored.toStdString();
        EXPECT_EQ(desktop.appKit.defaults.size(), 1U);
    }
}

TEST_F(MacSnap, KeepsTheLayoutsInApplicationSupport) {
    EXPECT_TRUE(
        QFileInfo::exists(appKit.applicationSupport.path() + u"/Tilewright/layouts.json"_s));
}
