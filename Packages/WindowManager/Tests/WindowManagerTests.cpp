#include <FakePlatform.h>
#include <WindowManager/WindowManager.h>

#include <gtest/gtest.h>

using namespace tilewright;
using namespace Qt::StringLiterals;
using tilewright::testing::FakeAccessibility;
using tilewright::testing::FakeDesktop;
using tilewright::testing::FakeElement;
using tilewright::testing::makeScreen;

namespace {

using Calls = std::vector<std::string>;

const Zone rightHalf{QUuid(), u"Right"_s, 0.5, 0, 0.5, 1};

/// One display of 1440 x 900 with a bar of 25 at its top, an application with a focused window.
class WindowManagerTest : public ::testing::Test {
protected:
    WindowManagerTest() {
        desktop.platform.fakeScreens.setScreens({screen});
        desktop.platform.fakeWorkspace.frontmost = 7;
        ax.applications[7] = application;
        application->elements[AXAttribute::focusedWindow] = window;
        window->process = 7;
    }

    /// The error that a call throws; none when it throws none.
    template<class Call>
    [[nodiscard]] static std::optional<WindowManagerError> errorOf(Call call) {
        try {
            call();
        } catch (const WindowManagerError& error) {
            return error;
        }
        return std::nullopt;
    }

    /// Hangs an element below a chain of that many parents, the last of which is the window.
    [[nodiscard]] std::shared_ptr<FakeElement> belowWindow(int parents) {
        auto child = ax.makeElement("element");
        const auto element = child;
        for (int i = 1; i < parents; ++i) {
            const auto parent = ax.makeElement("parent" + std::to_string(i));
            child->elements[AXAttribute::parent] = parent;
            child = parent;
        }
        child->elements[AXAttribute::parent] = window;
        chain_.push_back(element);
        return element;
    }

    void putAtEveryPoint(const std::shared_ptr<FakeElement>& element) {
        ax.elementAt = [element](AXPoint) { return element; };
    }

    FakeDesktop desktop;
    FakeAccessibility& ax = desktop.platform.fakeAccessibility;
    const std::shared_ptr<tilewright::testing::FakeScreen> screen =
        makeScreen({.frame = {0, 0, 1440, 900}, .visibleFrame = AppKitRect{0, 0, 1440, 875}});
    const std::shared_ptr<FakeElement> application = ax.makeElement("application");
    const std::shared_ptr<FakeElement> window = ax.makeWindow("window");
    WindowManager& manager = WindowManager::shared();

private:
    std::vector<std::shared_ptr<FakeElement>> chain_;
};

/// The calls that place the window into the right half.
const Calls placing{"makeValue 720,25", "makeValue 720x875", "window.set AXSize 720x875",
                    "window.set AXPosition 720,25", "window.set AXSize 720x875"};

Calls operator+(Calls a, const Calls& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

} // namespace

TEST_F(WindowManagerTest, IsSharedAndTakesPartInTheProtocol) {
    EXPECT_EQ(&WindowManager::shared(), &WindowManager::shared());
    WindowManaging& managing = WindowManager::shared();
    managing.moveFocusedWindow({10, 20, 300, 400});
    EXPECT_EQ(window->position, (AXPoint{10, 20}));
    EXPECT_EQ(window->size, (AXSize{300, 400}));
}

TEST_F(WindowManagerTest, AsksForTrustWithoutPrompting) {
    EXPECT_TRUE(manager.isAccessibilityGranted());
    ax.trusted = false;
    EXPECT_FALSE(manager.isAccessibilityGranted());
    EXPECT_EQ(ax.calls, (Calls{"isTrusted", "isTrusted"}));
}

TEST_F(WindowManagerTest, RequestsTrustAndAnswersWhetherThereIsAny) {
    EXPECT_TRUE(manager.requestAccessibilityPermission());
    ax.trusted = false;
    EXPECT_FALSE(manager.requestAccessibilityPermission());
    EXPECT_EQ(ax.calls, (Calls{"requestTrust", "requestTrust"}));
}

TEST_F(WindowManagerTest, SetsSizePositionAndSizeAgain) {
    manager.snap(window->handle(), rightHalf, *screen);
    EXPECT_EQ(ax.calls, Calls{"isTrusted"} + placing);
    EXPECT_EQ(ax.liveValues, 0);
}

TEST_F(WindowManagerTest, SnapsOnTheGivenScreen) {
    const auto second = makeScreen({.frame = {1440, -200, 1920, 1080}});
    desktop.platform.fakeScreens.setScreens({screen, second});
    manager.snap(window->handle(), rightHalf, *second);
    EXPECT_EQ(window->position, (AXPoint{2400, 20}));
    EXPECT_EQ(window->size, (AXSize{960, 1080}));
}

TEST_F(WindowManagerTest, DoesNotTouchAWindowWithoutTrust) {
    ax.trusted = false;
    EXPECT_EQ(errorOf([&] { manager.snap(window->handle(), rightHalf, *screen); }),
              WindowManagerError::accessibilityDenied());
    EXPECT_EQ(ax.calls, Calls{"isTrusted"});
}

TEST_F(WindowManagerTest, FailsWhenNoPositionValueCanBeMade) {
    ax.positionValuesFail = true;
    EXPECT_EQ(errorOf([&] { manager.snap(window->handle(), rightHalf, *screen); }),
              WindowManagerError::axValueCreationFailed());
    EXPECT_EQ(ax.calls, (Calls{"isTrusted", "makeValue 720,25"}));
}

TEST_F(WindowManagerTest, FailsWhenNoSizeValueCanBeMadeAndReleasesThePosition) {
    ax.sizeValuesFail = true;
    EXPECT_EQ(errorOf([&] { manager.snap(window->handle(), rightHalf, *screen); }),
              WindowManagerError::axValueCreationFailed());
    EXPECT_EQ(ax.calls, (Calls{"isTrusted", "makeValue 720,25", "makeValue 720x875"}));
    EXPECT_EQ(ax.liveValues, 0);
}

TEST_F(WindowManagerTest, IgnoresAFailureOfTheFirstSize) {
    window->writeErrors[AXAttribute::size] = {AXError::cannotComplete};
    EXPECT_EQ(errorOf([&] { manager.snap(window->handle(), rightHalf, *screen); }), std::nullopt);
    EXPECT_EQ(window->size, (AXSize{720, 875}));
}

TEST_F(WindowManagerTest, ReportsAFailureOfThePositionWithTheSizesSuccess) {
    window->writeErrors[AXAttribute::position] = {AXError::attributeUnsupported};
    desktop.platform.fakeWorkspace.names[7] = u"Editor"_s;
    window->strings[AXAttribute::subrole] = u"AXStandardWindow"_s;
    EXPECT_EQ(
        errorOf([&] { manager.snap(window->handle(), rightHalf, *screen); }),
        WindowManagerError::axSetFailed(AXError::attributeUnsupported, AXError::success,
                                        u"app=Editor role=AXWindow subrole=AXStandardWindow"_s));
    EXPECT_EQ(ax.calls,
              (Calls{"isTrusted"} + placing +
               Calls{"window.processID", "window.string AXRole", "window.string AXSubrole"}));
    EXPECT_EQ(ax.liveValues, 0);
}

TEST_F(WindowManagerTest, ReportsAFailureOfTheSecondSize) {
    window->writeErrors[AXAttribute::size] = {AXError::success, AXError::illegalArgument};
    const auto error = errorOf([&] { manager.snap(window->handle(), rightHalf, *screen); });
    ASSERT_TRUE(error && error->is<WindowManagerError::AXSetFailed>());
    const auto& failed = std::get<WindowManagerError::AXSetFailed>(error->kind());
    EXPECT_EQ(failed.position, AXError::success);
    EXPECT_EQ(failed.size, AXError::illegalArgument);
}

TEST_F(WindowManagerTest, DescribesAnApplicationWithoutANameByItsProcess) {
    window->writeErrors[AXAttribute::position] = {AXError::failure};
    EXPECT_EQ(errorOf([&] { manager.snap(window->handle(), rightHalf, *screen); }),
              WindowManagerError::axSetFailed(AXError::failure, AXError::success,
                                              u"app=pid 7 role=AXWindow subrole=?"_s));
}

TEST_F(WindowManagerTest, DescribesAWindowOfWhichNothingCanBeRead) {
    window->isGone = true;
    EXPECT_EQ(errorOf([&] { manager.snap(window->handle(), rightHalf, *screen); }),
              WindowManagerError::axSetFailed(AXError::invalidUIElement, AXError::invalidUIElement,
                                              u"app=pid 0 role=? subrole=?"_s));
}

TEST_F(WindowManagerTest, KeepsTheCasesOfItsErrorInOrder) {
    const std::vector<WindowManagerError> errors{
        WindowManagerError::axSetFailed(AXError::failure, AXError::success, u"info"_s),
        WindowManagerError::accessibilityDenied(),
        WindowManagerError::noFrontmostApp(),
        WindowManagerError::noFocusedWindow(),
        WindowManagerError::axValueCreationFailed(),
        WindowManagerError::noScreen()};
    for (std::size_t i = 0; i < errors.size(); ++i) {
        EXPECT_EQ(errors[i].kind().index(), i);
        for (std::size_t j = 0; j < errors.size(); ++j)
            EXPECT_EQ(errors[i] == errors[j], i == j);
    }
    EXPECT_NE(errors[0],
              WindowManagerError::axSetFailed(AXError::failure, AXError::success, u"other"_s));
}

TEST_F(WindowManagerTest, ResolvesTheWindowOfTheFocusedElement) {
    const auto focused = ax.makeElement("focused");
    const auto its = ax.makeWindow("its");
    focused->elements[AXAttribute::window] = its;
    ax.systemWide->elements[AXAttribute::focusedUIElement] = focused;
    manager.moveFocusedWindow({720, 25, 720, 875});
    EXPECT_EQ(ax.calls, (Calls{"isTrusted", "systemWideElement",
                               "systemWide.element AXFocusedUIElement", "focused.element AXWindow",
                               "makeValue 720,25", "makeValue 720x875", "its.set AXSize 720x875",
                               "its.set AXPosition 720,25", "its.set AXSize 720x875"}));
}

TEST_F(WindowManagerTest, PrefersTheWindowAttributeOfAFocusedElementThatIsAWindow) {
    const auto focused = ax.makeWindow("focused");
    const auto its = ax.makeWindow("its");
    focused->elements[AXAttribute::window] = its;
    ax.systemWide->elements[AXAttribute::focusedUIElement] = focused;
    manager.moveFocusedWindow({1, 2, 3, 4});
    EXPECT_EQ(its->position, (AXPoint{1, 2}));
    EXPECT_EQ(focused->size, AXSize{});
}

TEST_F(WindowManagerTest, ResolvesAFocusedElementThatIsAWindowToItself) {
    const auto focused = ax.makeWindow("focused");
    ax.systemWide->elements[AXAttribute::focusedUIElement] = focused;
    manager.moveFocusedWindow({1, 2, 3, 4});
    EXPECT_EQ(focused->size, (AXSize{3, 4}));
    EXPECT_EQ(ax.calls,
              (Calls{"isTrusted", "systemWideElement", "systemWide.element AXFocusedUIElement",
                     "focused.element AXWindow", "focused.string AXRole", "makeValue 1,2",
                     "makeValue 3x4", "focused.set AXSize 3x4", "focused.set AXPosition 1,2",
                     "focused.set AXSize 3x4"}));
}

TEST_F(WindowManagerTest, FallsBackToTheFrontmostApplicationsFocusedWindow) {
    const auto focused = ax.makeElement("focused");
    focused->strings[AXAttribute::role] = u"AXTextField"_s;
    ax.systemWide->elements[AXAttribute::focusedUIElement] = focused;
    manager.moveFocusedWindow({720, 25, 720, 875});
    EXPECT_EQ(ax.calls,
              (Calls{"isTrusted", "systemWideElement", "systemWide.element AXFocusedUIElement",
                     "focused.element AXWindow", "focused.string AXRole", "frontmostApplication",
                     "applicationElement 7", "application.element AXFocusedWindow"} +
               placing));
}

TEST_F(WindowManagerTest, FallsBackWhenNothingHasTheFocus) {
    manager.moveFocusedWindow({720, 25, 720, 875});
    EXPECT_EQ(ax.calls, (Calls{"isTrusted", "systemWideElement",
                               "systemWide.element AXFocusedUIElement", "frontmostApplication",
                               "applicationElement 7", "application.element AXFocusedWindow"} +
                         placing));
}

TEST_F(WindowManagerTest, FallsBackWhenTheFocusedElementVanishes) {
    const auto focused = ax.makeWindow("focused");
    focused->isGone = true;
    ax.systemWide->elements[AXAttribute::focusedUIElement] = focused;
    manager.moveFocusedWindow({1, 2, 3, 4});
    EXPECT_EQ(window->position, (AXPoint{1, 2}));
}

TEST_F(WindowManagerTest, FailsWithoutAFrontmostApplication) {
    desktop.platform.fakeWorkspace.frontmost.reset();
    EXPECT_EQ(errorOf([&] {
                  manager.moveFocusedWindow({1, 2, 3, 4});
              }),
              WindowManagerError::noFrontmostApp());
    EXPECT_EQ(errorOf([&] { manager.snapFocusedWindow(rightHalf, screen); }),
              WindowManagerError::noFrontmostApp());
}

TEST_F(WindowManagerTest, FailsWhenTheFrontmostApplicationHasNoFocusedWindow) {
    application->elements.clear();
    EXPECT_EQ(errorOf([&] {
                  manager.moveFocusedWindow({1, 2, 3, 4});
              }),
              WindowManagerError::noFocusedWindow());
    EXPECT_EQ(errorOf([&] { manager.snapFocusedWindow(rightHalf, screen); }),
              WindowManagerError::noFocusedWindow());
}

TEST_F(WindowManagerTest, FailsWhenTheFrontmostApplicationIsGone) {
    ax.applications.clear();
    EXPECT_EQ(errorOf([&] {
                  manager.moveFocusedWindow({1, 2, 3, 4});
              }),
              WindowManagerError::noFocusedWindow());
}

TEST_F(WindowManagerTest, MovesNothingWithoutTrust) {
    ax.trusted = false;
    EXPECT_EQ(errorOf([&] {
                  manager.moveFocusedWindow({1, 2, 3, 4});
              }),
              WindowManagerError::accessibilityDenied());
    EXPECT_EQ(errorOf([&] { manager.snapFocusedWindow(rightHalf, screen); }),
              WindowManagerError::accessibilityDenied());
    EXPECT_EQ(ax.calls, (Calls{"isTrusted", "isTrusted"}));
}

TEST_F(WindowManagerTest, SnapsTheFocusedWindowOnTheGivenScreen) {
    const auto second = makeScreen({.frame = {1440, 0, 1000, 800}});
    desktop.platform.fakeScreens.setScreens({screen, second});
    desktop.platform.fakePointer.at = {10, 10};
    manager.snapFocusedWindow(rightHalf, second);
    EXPECT_EQ(window->position, (AXPoint{1940, 100}));
    EXPECT_EQ(window->size, (AXSize{500, 800}));
}

TEST_F(WindowManagerTest, SnapsOnTheScreenUnderThePointerWhenNoneIsGiven) {
    const auto second = makeScreen({.frame = {1440, 0, 1000, 800}});
    desktop.platform.fakeScreens.setScreens({screen, second});
    desktop.platform.fakePointer.at = {1440, 10};
    manager.snapFocusedWindow(rightHalf, nullptr);
    EXPECT_EQ(window->position, (AXPoint{1940, 100}));
}

TEST_F(WindowManagerTest, SnapsOnTheMainScreenWhenThePointerIsOnNone) {
    const auto second = makeScreen({.frame = {1440, 0, 1000, 800}});
    desktop.platform.fakeScreens.setScreens({screen, second});
    desktop.platform.fakeScreens.setMain(second);
    desktop.platform.fakePointer.at = {700, 900};
    manager.snapFocusedWindow(rightHalf, nullptr);
    EXPECT_EQ(window->position, (AXPoint{1940, 100}));
}

TEST_F(WindowManagerTest, MissesAScreenBeforeItMissesTrust) {
    desktop.platform.fakeScreens.setScreens({});
    ax.trusted = false;
    EXPECT_EQ(errorOf([&] { manager.snapFocusedWindow(rightHalf, nullptr); }),
              WindowManagerError::noScreen());
    EXPECT_TRUE(ax.calls.empty());
}

TEST_F(WindowManagerTest, FindsTheScreenThatHoldsThePointer) {
    const auto second = makeScreen({.frame = {1440, 0, 1000, 800}});
    desktop.platform.fakeScreens.setScreens({screen, second});
    const auto at = [&](double x, double y) {
        desktop.platform.fakePointer.at = {x, y};
        return WindowManager::screenWithMouse();
    };
    EXPECT_EQ(at(0, 0), screen);
    EXPECT_EQ(at(1439.5, 899.5), screen);
    EXPECT_EQ(at(1440, 799), second);
    // The maximum edges are outside.
    EXPECT_EQ(at(1440, 800), nullptr);
    EXPECT_EQ(at(700, 900), nullptr);
    EXPECT_EQ(at(2440, 10), nullptr);
    EXPECT_EQ(at(-0.5, 10), nullptr);
    desktop.platform.fakeScreens.setScreens({});
    EXPECT_EQ(at(0, 0), nullptr);
}

TEST_F(WindowManagerTest, PrefersTheFirstOfScreensThatShowTheSame) {
    const auto mirror = makeScreen({.frame = {0, 0, 1440, 900}});
    desktop.platform.fakeScreens.setScreens({mirror, screen});
    EXPECT_EQ(WindowManager::screenWithMouse(), mirror);
}

TEST_F(WindowManagerTest, FindsTheWindowAtAPoint) {
    putAtEveryPoint(window);
    EXPECT_EQ(manager.windowElementAtScreenPoint({100, 250}), window->handle());
    EXPECT_EQ(ax.calls, (Calls{"elementAtPosition 100,650", "window.string AXRole"}));
}

TEST_F(WindowManagerTest, LooksForAWindowWithoutAskingForTrust) {
    ax.trusted = false;
    putAtEveryPoint(window);
    EXPECT_EQ(manager.windowElementAtScreenPoint({100, 250}), window->handle());
}

TEST_F(WindowManagerTest, FindsNoWindowWhereThereIsNoElement) {
    EXPECT_EQ(manager.windowElementAtScreenPoint({100, 250}), std::nullopt);
    EXPECT_EQ(ax.calls, Calls{"elementAtPosition 100,650"});
}

TEST_F(WindowManagerTest, TakesTheHeightAsNothingWithoutScreens) {
    desktop.platform.fakeScreens.setScreens({});
    putAtEveryPoint(window);
    EXPECT_EQ(manager.windowElementAtScreenPoint({100, 250}), window->handle());
    EXPECT_EQ(ax.calls.front(), "elementAtPosition 100,-250");
}

TEST_F(WindowManagerTest, FindsTheWindowAttributeOfAnElementAfterItsRole) {
    const auto element = ax.makeElement("element");
    element->elements[AXAttribute::window] = window;
    putAtEveryPoint(element);
    EXPECT_EQ(manager.windowElementAtScreenPoint({0, 0}), window->handle());
    EXPECT_EQ(ax.calls, (Calls{"elementAtPosition 0,900", "element.string AXRole",
                               "element.element AXWindow"}));
}

TEST_F(WindowManagerTest, PrefersTheRoleOfAnElementAtAPointToItsWindowAttribute) {
    const auto other = ax.makeWindow("other");
    window->elements[AXAttribute::window] = other;
    putAtEveryPoint(window);
    EXPECT_EQ(manager.windowElementAtScreenPoint({0, 0}), window->handle());
}

TEST_F(WindowManagerTest, WalksUpToTheWindowThroughTheParents) {
    putAtEveryPoint(belowWindow(2));
    EXPECT_EQ(manager.windowElementAtScreenPoint({0, 0}), window->handle());
    EXPECT_EQ(ax.calls,
              (Calls{"elementAtPosition 0,900", "element.string AXRole", "element.element AXWindow",
                     "element.element AXParent", "parent1.string AXRole",
                     "parent1.element AXParent", "window.string AXRole"}));
}

TEST_F(WindowManagerTest, FindsAWindowThatIsThe25thAncestor) {
    putAtEveryPoint(belowWindow(25));
    EXPECT_EQ(manager.windowElementAtScreenPoint({0, 0}), window->handle());
}

TEST_F(WindowManagerTest, FindsNoWindowThatIsThe26thAncestor) {
    putAtEveryPoint(belowWindow(26));
    EXPECT_EQ(manager.windowElementAtScreenPoint({0, 0}), std::nullopt);
}

TEST_F(WindowManagerTest, EndsAtACircleOfParents) {
    const auto a = ax.makeElement("a");
    const auto b = ax.makeElement("b");
    a->elements[AXAttribute::parent] = b;
    b->elements[AXAttribute::parent] = a;
    putAtEveryPoint(a);
    EXPECT_EQ(manager.windowElementAtScreenPoint({0, 0}), std::nullopt);
    // The point, the element's role and window, and 25 times a parent and its role.
    EXPECT_EQ(ax.calls.size(), 3U + 2U * 25U);
    a->elements.clear();
}

TEST_F(WindowManagerTest, FindsNoWindowAboveAnElementThatVanishes) {
    const auto element = belowWindow(3);
    element->elements[AXAttribute::parent]->isGone = true;
    putAtEveryPoint(element);
    EXPECT_EQ(manager.windowElementAtScreenPoint({0, 0}), std::nullopt);
}
