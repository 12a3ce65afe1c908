#pragma once

#include <FakePlatform.h>
#include <Tilewright/SnapController.h>
#include <Tilewright/SnapSettings.h>
#include <WindowManager/LayoutStore.h>

#include <gtest/gtest.h>

namespace tilewright::testing {

/// A desktop of two displays side by side with a gap between them and a panel on top of the first.
/// The first shows Bento Box, the second Halves. A window lies wherever the pointer is, another one
/// has the focus.
class SnapFixture : public ::testing::Test {
protected:
    SnapFixture() {
        FakeScreen::Values values;
        values.frame = {0, 0, 1440, 900};
        values.visibleFrame = AppKitRect{0, 0, 1440, 875};
        values.displayID = 1;
        first = makeScreen(values);
        values.frame = {1500, -200, 1920, 1080};
        values.visibleFrame.reset();
        values.displayID = 2;
        second = makeScreen(values);
        platform.fakeScreens.setScreens({first, second});

        window = accessibility.makeWindow("window");
        accessibility.elementAt = [this](AXPoint point) {
            lookedAt = point;
            return window;
        };
        focused = accessibility.makeWindow("focused");
        const auto field = accessibility.makeElement("field");
        field->elements[AXAttribute::window] = focused;
        accessibility.systemWide->elements[AXAttribute::focusedUIElement] = field;

        LayoutStore::shared().assign(ZoneLayout::halves(), *second);
        SnapController::shared().start();
    }

    [[nodiscard]] static SnapController& controller() { return SnapController::shared(); }
    [[nodiscard]] static const SnapOverlayModel& model() { return controller().overlayModel(); }

    void send(const Event& event) {
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global, event);
    }
    void flags(ModifierFlags held) { send({EventType::flagsChanged, held}); }
    void pressModifier() { flags({ModifierFlag::control}); }
    void releaseModifier() { flags({}); }
    void dragTo(AppKitPoint point) {
        platform.fakePointer.at = point;
        send({EventType::leftMouseDragged, {}});
    }
    void release() { send({EventType::leftMouseUp, {}}); }

    [[nodiscard]] bool isOverlayShown() const { return platform.overlay.isVisible; }
    [[nodiscard]] static const Zone& bento(std::size_t index) {
        return ZoneLayout::bentoBox().zones.at(index);
    }
    [[nodiscard]] static const Zone& halves(std::size_t index) {
        return ZoneLayout::halves().zones.at(index);
    }
    static bool isUntouched(const FakeElement& element) {
        return element.position == AXPoint{} && element.size == AXSize{};
    }

    FakeDesktop desktop;
    FakePlatform& platform = desktop.platform;
    FakeAccessibility& accessibility = desktop.platform.fakeAccessibility;
    std::shared_ptr<FakeScreen> first;
    std::shared_ptr<FakeScreen> second;
    std::shared_ptr<FakeElement> window;
    std::shared_ptr<FakeElement> focused;
    std::optional<AXPoint> lookedAt;
};

/// Places to drag to, in AppKit screen space.
inline constexpr AppKitPoint inPrimary{400, 400};
inline constexpr AppKitPoint inTopRight{1200, 700};
inline constexpr AppKitPoint onPanel{400, 890};
inline constexpr AppKitPoint betweenScreens{1470, 400};
inline constexpr AppKitPoint inLeftHalfOfSecond{1800, 300};
inline constexpr AppKitPoint inRightHalfOfSecond{3000, 300};

} // namespace tilewright::testing
