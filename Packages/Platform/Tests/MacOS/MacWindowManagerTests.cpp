// Window control through the real adapters: what it asks of the system, in which order, and that
// nothing is left over on any path.

#include "MacTestPlatform.h"

#include <WindowManager/WindowManager.h>

#include <gtest/gtest.h>
#include <unistd.h>

namespace tilewright::testing {

using namespace Qt::StringLiterals;

namespace {

using Calls = std::vector<std::string>;

const Zone rightHalf{QUuid(), u"Right"_s, 0.5, 0, 0.5, 1};

/// One display of 1440 x 900 with a bar of 25 at its top, an application with a focused window.
class MacWindowManager : public ::testing::Test {
protected:
    MacWindowManager() {
        appKit.screens = {makeFacts({0, 0, 1440, 900}, 1, 25)};
        appKit.mainScreen = 0;
        appKit.frontmost = 7;
        system.applications[7] = application;
        application->attributes["AXFocusedWindow"] = window;
        window->process = 7;
        // What the adapters asked while they were made.
        system.calls.clear();
    }

    /// The error that a call throws; none when it throws none. Nothing may be left behind.
    template<class Call>
    [[nodiscard]] static std::optional<WindowManagerError> errorOf(Call call) {
        std::optional<WindowManagerError> thrown;
        const auto before = fakecf::live();
        try {
            call();
        } catch (const WindowManagerError& error) {
            thrown = error;
        }
        EXPECT_EQ(fakecf::live(), before);
        return thrown;
    }

    [[nodiscard]] std::optional<WindowManagerError> errorOfMoving() {
        return errorOf([this] { manager.moveFocusedWindow({720, 25, 720, 875}); });
    }
    [[nodiscard]] std::optional<WindowManagerError> errorOfSnapping() {
        const auto handle = handleOf(window);
        return errorOf([&] { manager.snap(handle, rightHalf, *screen()); });
    }

    [[nodiscard]] ScreenPtr screen() { return desktop.platform.screens.all().front(); }
    [[nodiscard]] AccessibilityElement handleOf(const std::shared_ptr<MacNode>& node) const {
        system.elementAt = [node](AXPoint) { return node; };
        const auto element = desktop.platform.accessibility.elementAtPosition({});
        system.elementAt = nullptr;
        system.calls.clear();
        return *element.value;
    }
    void putAtEveryPoint(const std::shared_ptr<MacNode>& node) {
        system.elementAt = [node](AXPoint) { return node; };
    }
    /// Whether the window at a point is that one.
    [[nodiscard]] bool finds(const std::shared_ptr<MacNode>& node, AppKitPoint point = {0, 0}) {
        const auto found = manager.windowElementAtScreenPoint(point);
        const Calls calls = system.calls;
        const auto elementAt = system.elementAt;
        const bool isIt = found && *found == handleOf(node);
        system.calls = calls;
        system.elementAt = elementAt;
        return isIt;
    }
    [[nodiscard]] bool findsNone() {
        return !manager.windowElementAtScreenPoint({0, 0}).has_value();
    }
    /// Hangs an element below a chain of that many parents, the last of which is the window.
    [[nodiscard]] std::shared_ptr<MacNode> belowWindow(int parents) const {
        std::shared_ptr<MacNode> child = window;
        for (int i = parents - 1; i >= 0; --i) {
            const auto below =
                FakeMacSystem::makeElement(i == 0 ? "element" : "parent" + std::to_string(i));
            below->attributes["AXParent"] = child;
            child = below;
        }
        return child;
    }

    mutable MacDesktop desktop;
    FakeMacSystem& system = desktop.system;
    FakeAppKit& appKit = desktop.appKit;
    const std::shared_ptr<MacNode> application = FakeMacSystem::makeElement("application");
    const std::shared_ptr<MacNode> window = FakeMacSystem::makeWindow("window");
    WindowManager& manager = WindowManager::shared();
};

Calls operator+(Calls a, const Calls& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/// The calls that place the window into the right half: the application's mode is looked at once.
const Calls placing{"AXValueCreate 720,25",
                    "AXValueCreate 720x875",
                    "window.process",
                    "AXUIElementCreateApplication 7",
                    "application.timeout 1",
                    "application.copy AXEnhancedUserInterface",
                    "window.set AXSize 720x875",
                    "window.set AXPosition 720,25",
                    "window.set AXSize 720x875"};
const Calls resolvingThroughTheApplication{
    "AXUIElementCreateSystemWide", "systemWide.copy AXFocusedUIElement",
    "AXUIElementCreateApplication 7", "application.copy AXFocusedWindow"};

} // namespace

TEST_F(MacWindowManager, AnswersWhetherItIsTrustedWithoutAPrompt) {
    EXPECT_TRUE(manager.isAccessibilityGranted());
    system.isTrusted = false;
    EXPECT_FALSE(manager.isAccessibilityGranted());
    EXPECT_TRUE(system.prompts.empty());
}

TEST_F(MacWindowManager, AsksForTrustWithAPrompt) {
    EXPECT_TRUE(manager.requestAccessibilityPermission());
    system.isTrusted = false;
    EXPECT_FALSE(manager.requestAccessibilityPermission());
    EXPECT_EQ(system.prompts,
              (Calls{"AXTrustedCheckOptionPrompt=true", "AXTrustedCheckOptionPrompt=true"}));
    EXPECT_TRUE(fakecf::live().empty());
}

TEST_F(MacWindowManager, SetsSizePositionAndSizeAgain) {
    EXPECT_EQ(errorOfSnapping(), std::nullopt);
    EXPECT_EQ(system.calls, Calls{"AXIsProcessTrusted"} + placing);
    EXPECT_EQ(window->position, (AXPoint{720, 25}));
    EXPECT_EQ(window->size, (AXSize{720, 875}));
}

TEST_F(MacWindowManager, DoesNotTouchAWindowWithoutTrust) {
    system.isTrusted = false;
    EXPECT_EQ(errorOfSnapping(), WindowManagerError::accessibilityDenied());
    EXPECT_EQ(system.calls, Calls{"AXIsProcessTrusted"});
}

TEST_F(MacWindowManager, FailsWhenNoPositionValueCanBeMade) {
    fakecf::failing().insert("AXValueCreate position");
    EXPECT_EQ(errorOfSnapping(), WindowManagerError::axValueCreationFailed());
    EXPECT_EQ(system.calls, (Calls{"AXIsProcessTrusted", "AXValueCreate 720,25"}));
}

TEST_F(MacWindowManager, FailsWhenNoSizeValueCanBeMadeAndReleasesThePosition) {
    fakecf::failing().insert("AXValueCreate size");
    EXPECT_EQ(errorOfSnapping(), WindowManagerError::axValueCreationFailed());
    EXPECT_EQ(system.calls,
              (Calls{"AXIsProcessTrusted", "AXValueCreate 720,25", "AXValueCreate 720x875"}));
}

TEST_F(MacWindowManager, IgnoresAFailureOfTheFirstSize) {
    window->writeErrors["AXSize"] = {AXError::cannotComplete};
    EXPECT_EQ(errorOfSnapping(), std::nullopt);
    EXPECT_EQ(window->size, (AXSize{720, 875}));
}

TEST_F(MacWindowManager, ReportsAFailureOfThePositionWithTheSizesSuccess) {
    window->writeErrors["AXPosition"] = {AXError::attributeUnsupported};
    window->attributes["AXSubrole"] = u"AXStandardWindow"_s;
    appKit.names[7] = u"Editor"_s;
    EXPECT_EQ(errorOfSnapping(), WindowManagerError::axSetFailed(
                                     AXError::attributeUnsupported, AXError::success,
                                     u"app=Editor role=AXWindow subrole=AXStandardWindow"_s));
    EXPECT_EQ(system.calls,
              (Calls{"AXIsProcessTrusted"} + placing +
               Calls{"window.process", "window.copy AXRole", "window.copy AXSubrole"}));
}

TEST_F(MacWindowManager, ReportsAFailureOfTheSecondSize) {
    window->writeErrors["AXSize"] = {AXError::success, AXError::illegalArgument};
    EXPECT_EQ(errorOfSnapping(),
              WindowManagerError::axSetFailed(AXError::success, AXError::illegalArgument,
                                              u"app=pid 7 role=AXWindow subrole=?"_s));
}

TEST_F(MacWindowManager, DescribesAWindowOfWhichNothingCanBeRead) {
    window->isGone = true;
    EXPECT_EQ(errorOfSnapping(),
              WindowManagerError::axSetFailed(AXError::invalidUIElement, AXError::invalidUIElement,
                                              u"app=pid 0 role=? subrole=?"_s));
}

TEST_F(MacWindowManager, DescribesAttributesThatAreNoTextAsUnknown) {
    window->writeErrors["AXPosition"] = {AXError::failure};
    window->attributes["AXRole"] = true;
    window->attributes["AXSubrole"] = std::monostate();
    EXPECT_EQ(errorOfSnapping(), WindowManagerError::axSetFailed(AXError::failure, AXError::success,
                                                                 u"app=pid 7 role=? subrole=?"_s));
}

TEST_F(MacWindowManager, ResolvesTheWindowOfTheFocusedElement) {
    const auto focused = FakeMacSystem::makeWindow("focused");
    focused->attributes["AXWindow"] = window;
    system.systemWide->attributes["AXFocusedUIElement"] = focused;
    EXPECT_EQ(errorOfMoving(), std::nullopt);
    EXPECT_EQ(system.calls, (Calls{"AXIsProcessTrusted", "AXUIElementCreateSystemWide",
                                   "systemWide.copy AXFocusedUIElement", "focused.process",
                                   "focused.copy AXWindow"} +
                             placing));
}

TEST_F(MacWindowManager, ResolvesAFocusedElementThatIsAWindowToItself) {
    system.systemWide->attributes["AXFocusedUIElement"] = window;
    EXPECT_EQ(errorOfMoving(), std::nullopt);
    EXPECT_EQ(system.calls, (Calls{"AXIsProcessTrusted", "AXUIElementCreateSystemWide",
                                   "systemWide.copy AXFocusedUIElement", "window.process",
                                   "window.copy AXWindow", "window.copy AXRole"} +
                             placing));
}

TEST_F(MacWindowManager, FallsBackToTheFrontmostApplicationsFocusedWindow) {
    const auto field = FakeMacSystem::makeElement("field");
    field->attributes["AXRole"] = u"AXTextField"_s;
    system.systemWide->attributes["AXFocusedUIElement"] = field;
    EXPECT_EQ(errorOfMoving(), std::nullopt);
    EXPECT_EQ(system.calls,
              (Calls{"AXIsProcessTrusted", "AXUIElementCreateSystemWide",
                     "systemWide.copy AXFocusedUIElement", "field.process", "field.copy AXWindow",
                     "field.copy AXRole", "AXUIElementCreateApplication 7",
                     "application.copy AXFocusedWindow"} +
               placing));
}

TEST_F(MacWindowManager, LooksPastThisProgramsOwnPanelForTheFocusedWindow) {
    const auto button = FakeMacSystem::makeElement("button");
    button->process = getpid();
    button->attributes["AXWindow"] = FakeMacSystem::makeWindow("panel");
    system.systemWide->attributes["AXFocusedUIElement"] = button;
    appKit.announce(appkit::Notification::applicationActivated);
    appKit.frontmost = getpid();
    appKit.announce(appkit::Notification::applicationActivated);
    EXPECT_EQ(errorOfMoving(), std::nullopt);
    EXPECT_EQ(window->position, (AXPoint{720, 25}));
}

TEST_F(MacWindowManager, TreatsEveryFailedReadAsAMissingValue) {
    const auto falls = [this] {
        system.calls.clear();
        window->position = {};
        EXPECT_EQ(errorOfMoving(), std::nullopt);
        return window->position == AXPoint{720, 25};
    };
    // An error, a success without a value, a value of another type.
    system.systemWide->readErrors["AXFocusedUIElement"] = AXError::cannotComplete;
    EXPECT_TRUE(falls());
    system.systemWide->readErrors.clear();
    system.systemWide->attributes["AXFocusedUIElement"] = std::monostate();
    EXPECT_TRUE(falls());
    system.systemWide->attributes["AXFocusedUIElement"] = u"no element"_s;
    EXPECT_TRUE(falls());
    const auto focused = FakeMacSystem::makeElement("focused");
    focused->attributes["AXWindow"] = qint64{5};
    system.systemWide->attributes["AXFocusedUIElement"] = focused;
    EXPECT_TRUE(falls());
    focused->isGone = true;
    EXPECT_TRUE(falls());
    fakecf::failing().insert("AXUIElementCreateSystemWide");
    EXPECT_TRUE(falls());
}

TEST_F(MacWindowManager, FailsWithoutAFrontmostApplication) {
    appKit.frontmost.reset();
    EXPECT_EQ(errorOfMoving(), WindowManagerError::noFrontmostApp());
    EXPECT_EQ(errorOf([&] { manager.snapFocusedWindow(rightHalf, screen()); }),
              WindowManagerError::noFrontmostApp());
}

TEST_F(MacWindowManager, FailsWithoutAFocusedWindow) {
    application->readErrors["AXFocusedWindow"] = AXError::apiDisabled;
    EXPECT_EQ(errorOfMoving(), WindowManagerError::noFocusedWindow());
    application->readErrors.clear();
    application->attributes["AXFocusedWindow"] = std::monostate();
    EXPECT_EQ(errorOfMoving(), WindowManagerError::noFocusedWindow());
    application->attributes.clear();
    EXPECT_EQ(errorOfMoving(), WindowManagerError::noFocusedWindow());
    system.applications.clear();
    EXPECT_EQ(errorOfMoving(), WindowManagerError::noFocusedWindow());
    fakecf::failing().insert("AXUIElementCreateApplication");
    EXPECT_EQ(errorOfMoving(), WindowManagerError::noFocusedWindow());
}

TEST_F(MacWindowManager, MovesNothingWithoutTrust) {
    system.isTrusted = false;
    EXPECT_EQ(errorOfMoving(), WindowManagerError::accessibilityDenied());
    EXPECT_EQ(errorOf([&] { manager.snapFocusedWindow(rightHalf, screen()); }),
              WindowManagerError::accessibilityDenied());
    EXPECT_EQ(system.calls, (Calls{"AXIsProcessTrusted", "AXIsProcessTrusted"}));
}

TEST_F(MacWindowManager, SnapsTheFocusedWindowIntoTheVisibleFrame) {
    EXPECT_EQ(errorOf([&] { manager.snapFocusedWindow(rightHalf, screen()); }), std::nullopt);
    EXPECT_EQ(system.calls, Calls{"AXIsProcessTrusted"} + resolvingThroughTheApplication + placing);
}

TEST_F(MacWindowManager, SnapsOnTheScreenUnderThePointerOrElseOnTheMainOne) {
    appKit.screens.push_back(makeFacts({1440, 0, 1000, 800}, 2));
    appKit.mouse = {1440, 10};
    manager.snapFocusedWindow(rightHalf, nullptr);
    EXPECT_EQ(window->position, (AXPoint{1940, 100}));
    // The maximum edge is outside.
    appKit.mouse = {700, 900};
    manager.snapFocusedWindow(rightHalf, nullptr);
    EXPECT_EQ(window->position, (AXPoint{720, 25}));
}

TEST_F(MacWindowManager, MissesAScreenBeforeItMissesTrust) {
    appKit.screens.clear();
    appKit.mainScreen.reset();
    system.isTrusted = false;
    EXPECT_EQ(errorOf([&] { manager.snapFocusedWindow(rightHalf, nullptr); }),
              WindowManagerError::noScreen());
    EXPECT_TRUE(system.calls.empty());
}

TEST_F(MacWindowManager, FindsTheWindowAtAPointWithoutAskingForTrust) {
    system.isTrusted = false;
    putAtEveryPoint(window);
    EXPECT_TRUE(finds(window, {100, 250}));
    EXPECT_EQ(system.calls, (Calls{"AXUIElementCreateSystemWide", "systemWide.elementAt 100,650",
                                   "window.copy AXRole"}));
}

TEST_F(MacWindowManager, TakesTheHeightAsNothingWithoutScreens) {
    appKit.screens.clear();
    putAtEveryPoint(window);
    EXPECT_TRUE(finds(window, {100, 250}));
    EXPECT_EQ(system.calls.at(1), "systemWide.elementAt 100,-250");
}

TEST_F(MacWindowManager, FindsNoWindowWhereNoElementIsToBeHad) {
    EXPECT_TRUE(findsNone());
    system.elementAtError = AXError::cannotComplete;
    EXPECT_TRUE(findsNone());
    // A success without an element.
    system.elementAtError = AXError::success;
    EXPECT_TRUE(findsNone());
    fakecf::failing().insert("AXUIElementCreateSystemWide");
    EXPECT_TRUE(findsNone());
    EXPECT_TRUE(fakecf::live().empty());
}

TEST_F(MacWindowManager, LooksAtTheRoleFirstAndThenAtTheWindowAttribute) {
    const auto element = FakeMacSystem::makeElement("element");
    element->attributes["AXWindow"] = window;
    putAtEveryPoint(element);
    EXPECT_TRUE(finds(window));
    EXPECT_EQ(system.calls, (Calls{"AXUIElementCreateSystemWide", "systemWide.elementAt 0,900",
                                   "element.copy AXRole", "element.copy AXWindow"}));
    element->attributes["AXRole"] = u"AXWindow"_s;
    EXPECT_TRUE(finds(element));
}

TEST_F(MacWindowManager, WalksUpToTheWindowThroughTheParents) {
    putAtEveryPoint(belowWindow(2));
    EXPECT_TRUE(finds(window));
    EXPECT_EQ(system.calls,
              (Calls{"AXUIElementCreateSystemWide", "systemWide.elementAt 0,900",
                     "element.copy AXRole", "element.copy AXWindow", "element.copy AXParent",
                     "parent1.copy AXRole", "parent1.copy AXParent", "window.copy AXRole"}));
}

TEST_F(MacWindowManager, FindsAWindowThatIsThe25thAncestorAndNoneThatIsThe26th) {
    putAtEveryPoint(belowWindow(25));
    EXPECT_TRUE(finds(window));
    putAtEveryPoint(belowWindow(26));
    EXPECT_TRUE(findsNone());
    EXPECT_TRUE(fakecf::live().empty());
}

TEST_F(MacWindowManager, FindsNoWindowAboveAnElementWhoseParentCannotBeRead) {
    const auto element = belowWindow(3);
    element->readErrors["AXParent"] = AXError::notImplemented;
    putAtEveryPoint(element);
    EXPECT_TRUE(findsNone());
}

TEST_F(MacWindowManager, FindsTheScreenThatHoldsThePointer) {
    appKit.screens.push_back(makeFacts({1440, 0, 1000, 800}, 2));
    const auto at = [this](double x, double y) {
        appKit.mouse = {x, y};
        return WindowManager::screenWithMouse();
    };
    const auto all = desktop.platform.screens.all();
    EXPECT_EQ(at(0, 0), all[0]);
    EXPECT_EQ(at(1439.5, 899.5), all[0]);
    EXPECT_EQ(at(1440, 799), all[1]);
    EXPECT_EQ(at(1440, 800), nullptr);
    EXPECT_EQ(at(700, 900), nullptr);
    EXPECT_EQ(at(2440, 10), nullptr);
    EXPECT_EQ(at(-0.5, 10), nullptr);
}

} // namespace tilewright::testing
