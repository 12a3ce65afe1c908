#pragma once

#include <Platform/Platform.h>

#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace tilewright::testing {

/// Where a window is, in Accessibility screen space.
struct WindowFrame {
    AXPoint position;
    AXSize size;

    friend bool operator==(const WindowFrame&, const WindowFrame&) = default;
};

/// A desktop with a platform under test, and the hands of a user and of other applications on it.
/// What the hands do may reach the platform only some turns of the loop later.
class PlatformWorld {
public:
    PlatformWorld() = default;
    PlatformWorld(const PlatformWorld&) = delete;
    PlatformWorld& operator=(const PlatformWorld&) = delete;
    virtual ~PlatformWorld() = default;

    /// The platform under test, installed.
    [[nodiscard]] virtual Platform& platform() = 0;
    /// Turns the loop until the condition holds; false when it never does.
    [[nodiscard]] virtual bool waitUntil(const std::function<bool()>& condition) = 0;

    /// Opens another application's window, active. Its process.
    [[nodiscard]] virtual ProcessID openWindow(const WindowFrame& frame) = 0;
    /// The window goes, its application with it.
    virtual void closeWindow() = 0;
    /// Where the window is by the word of somebody else than the platform.
    [[nodiscard]] virtual WindowFrame windowFrame() const = 0;

    virtual void movePointer(AppKitPoint to) = 0;
    /// The user holds Control, the left button, or neither, over another application's window.
    virtual void holdControl() = 0;
    virtual void releaseControl() = 0;
    virtual void pressButton() = 0;
    virtual void releaseButton() = 0;
    /// The user presses and releases the Escape key.
    virtual void tapEscape() = 0;

    /// A panel takes the uppermost 40 points of the primary display.
    virtual void addPanel() = 0;
    /// Whether a panel surface's content, 300 points wide, is on the display, by the word of
    /// somebody else than the surface where there is such a one.
    [[nodiscard]] virtual bool showsPanel() const = 0;
};

/// Makes a world; null, with a failed test, when it cannot be made.
using PlatformWorldFactory = std::function<std::unique_ptr<PlatformWorld>()>;

/// What every implementation of `Platform` has to do. Each program instantiates it for its world.
class PlatformConformance : public ::testing::TestWithParam<PlatformWorldFactory> {
protected:
    void SetUp() override {
        world = GetParam()();
        ASSERT_NE(world, nullptr);
    }

    [[nodiscard]] Platform& platform() { return world->platform(); }
    [[nodiscard]] const std::vector<ScreenPtr>& screens() { return platform().screens.all(); }
    /// The middle of a window as a point of AppKit screen space.
    [[nodiscard]] AppKitPoint middleOf(const WindowFrame& frame) {
        return {frame.position.x + frame.size.width / 2,
                screens().front()->frame().height - frame.position.y - frame.size.height / 2};
    }
    /// The window at a point of Accessibility screen space: the element there, or the first one
    /// above it that is a window.
    [[nodiscard]] std::optional<AccessibilityElement> windowAt(AXPoint point);
    /// Opens a window and waits until the platform knows it.
    [[nodiscard]] std::optional<AccessibilityElement> openKnownWindow();

    const WindowFrame opened{{100, 120}, {400, 300}};
    const AXPoint inside{300, 270};
    ProcessID process = 0;
    std::unique_ptr<PlatformWorld> world;
};

} // namespace tilewright::testing
