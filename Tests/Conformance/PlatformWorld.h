#pragma once

#include <Platform/Platform.h>

#include <QColor>
#include <QImage>
#include <QString>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

namespace tilewright::testing {

/// Where a window is, in Accessibility screen space.
struct WindowFrame {
    AXPoint position;
    AXSize size;

    friend bool operator==(const WindowFrame&, const WindowFrame&) = default;
};

/// The status item as the menu bar, or the tray, shows it.
struct ShownItem {
    QString name;
    /// The symbol; what is not transparent in it is its shape.
    QImage picture;
};

/// What the overlay views of the suite show everywhere: a colour that nothing else has.
inline const QColor overlayColor(201, 19, 87);

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
    /// The display's right half becomes a display of its own, and only the upper half of that: the
    /// first one is twice as high.
    virtual void splitDisplay() = 0;
    /// Whether a panel surface's content, 300 points wide, is on the display, by the word of
    /// somebody else than the surface where there is such a one.
    [[nodiscard]] virtual bool showsPanel() const = 0;

    /// Where an overlay surface is, if it is shown and nothing covers its middle, by the word of
    /// somebody else than the surface; none otherwise.
    [[nodiscard]] virtual std::optional<AppKitRect> overlayFrame() const = 0;
    /// Whether a press in the middle of the overlay would go to it and not to what is beneath.
    [[nodiscard]] virtual bool overlayTakesPresses() const = 0;
    /// Whether overlay surfaces show their views at all, and so end the views' animations. A fake
    /// that notes what it is told does neither.
    [[nodiscard]] virtual bool drawsOverlays() const = 0;
    /// Whether the view's widget itself is what such a surface shows; else it is painted from it.
    [[nodiscard]] virtual bool showsOverlayWidgets() const { return drawsOverlays(); }
    /// Whether the desktop has an overlay's picture before it shows the overlay, without another
    /// turn of the loop.
    [[nodiscard]] virtual bool showsOverlaysWhole() const { return false; }
    /// Whether this program has come before the application whose window was opened.
    [[nodiscard]] virtual bool isThisApplicationInFront() const = 0;

    /// Whether the item shows every symbol that it is given. Where the desktop draws it, it knows
    /// the program's own alone; then the picture is null.
    [[nodiscard]] virtual bool showsEverySymbol() const { return true; }
    /// The status item, none while none is shown. May turn the loop.
    [[nodiscard]] virtual std::optional<ShownItem> shownItem() = 0;
    /// The user clicks on the item that is shown. Where.
    [[nodiscard]] virtual AppKitPoint clickItem() = 0;

    /// Another instance of the program has been running for a while.
    virtual void startEarlierInstance() = 0;
    /// Whether that instance was asked to show itself. Where a platform only answers, and there is
    /// nobody to be asked, it was.
    [[nodiscard]] virtual bool isEarlierInstanceAsked() = 0;
    /// The user starts the program once more. Returns when that instance has found this one.
    virtual void startLaterInstance() = 0;
    /// The platform ends, as when the program quits: nothing may ask for it from then on.
    virtual void endPlatform() = 0;

    /// The user asks the desktop for less motion, or for all of it.
    virtual void wishReducedMotion(bool isReduced) = 0;
    /// The user asks the desktop for dark or for light colours. Whether it is the platform's matter
    /// to tell of that: it is not where Qt hears of it by itself.
    [[nodiscard]] virtual bool wishDark(bool isDark) = 0;
    /// Whether the desktop blends windows, and from when on it does for certain.
    [[nodiscard]] virtual bool blendsWindows() const = 0;
    virtual void startBlending() = 0;

    /// The permission to move windows, or whatever it rests on, is taken away or given back.
    virtual void setTrust(bool isGranted) = 0;
    /// How many power assertions the desktop counts as held.
    [[nodiscard]] virtual int heldAssertions() = 0;
    /// The folder in which everything of the user's is.
    [[nodiscard]] virtual QString home() const = 0;
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
