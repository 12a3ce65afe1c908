// A whole snap with every call of the accessibility interface failing in its turn.

#include "MacTestPlatform.h"

#include <WindowManager/WindowManager.h>

#include <gtest/gtest.h>

namespace tilewright::testing {

using namespace Qt::StringLiterals;

namespace {

/// A button in a window of an application in its enhanced accessibility mode, and one display.
class MacFailureSweep : public ::testing::Test {
protected:
    MacFailureSweep() {
        desktop.appKit.screens = {makeFacts({0, 0, 1440, 900}, 1, 25)};
        desktop.appKit.frontmost = 7;
        system.applications[7] = application;
        application->attributes["AXFocusedWindow"] = window;
        window->process = 7;
        button->attributes["AXParent"] = window;
        system.elementAt = [this](AXPoint) { return button; };
    }

    /// Snaps the window under the pointer and then the focused one; the error, if there is one.
    /// Nothing may be left behind, and the application has to have its mode back.
    [[nodiscard]] std::optional<WindowManagerError> errorOfSnaps() {
        application->attributes["AXEnhancedUserInterface"] = true;
        system.fallibleCalls = 0;
        const auto before = fakecf::live();
        std::optional<WindowManagerError> thrown;
        try {
            WindowManager& manager = WindowManager::shared();
            const ScreenPtr screen = desktop.platform.screens.all().front();
            if (const auto found = manager.windowElementAtScreenPoint({0, 0}))
                manager.snap(*found, zone, *screen);
            manager.snapFocusedWindow(zone, screen);
        } catch (const WindowManagerError& error) {
            thrown = error;
        }
        EXPECT_EQ(fakecf::live(), before);
        EXPECT_EQ(application->attributes["AXEnhancedUserInterface"], MacNode::Value(true));
        return thrown;
    }

    MacDesktop desktop;
    FakeMacSystem& system = desktop.system;
    const Zone zone{QUuid(), u"Right"_s, 0.5, 0, 0.5, 1};
    const std::shared_ptr<MacNode> application = FakeMacSystem::makeElement("application");
    const std::shared_ptr<MacNode> window = FakeMacSystem::makeWindow("window");
    const std::shared_ptr<MacNode> button = FakeMacSystem::makeElement("button");
};

} // namespace

TEST_F(MacFailureSweep, GivesBackEverythingWhicheverCallFailsWithWhicheverError) {
    ASSERT_EQ(errorOfSnaps(), std::nullopt);
    const int calls = system.fallibleCalls;
    // To find the window, to pause the mode, to write three times, to have the mode back; twice.
    ASSERT_GE(calls, 20);
    for (int call = 0; call < calls; ++call) {
        for (int number = -25214; number <= -25200; ++number) {
            SCOPED_TRACE(::testing::Message() << "call " << call << ", error " << number);
            const auto error = static_cast<AXError>(number);
            system.failure = {call, error};
            const auto thrown = errorOfSnaps();
            if (!thrown || *thrown == WindowManagerError::noFocusedWindow())
                continue;
            const auto* set = std::get_if<WindowManagerError::AXSetFailed>(&thrown->kind());
            EXPECT_TRUE(set && (set->position == error || set->size == error));
        }
    }
}

} // namespace tilewright::testing
