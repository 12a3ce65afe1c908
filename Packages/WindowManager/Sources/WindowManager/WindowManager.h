#pragma once

#include "WindowManagerError.h"
#include "WindowManaging.h"
#include "Zone.h"

#include <Platform/Platform.h>

namespace tilewright {

/// The only place that touches other applications' windows: finds them and moves them into zones,
/// through the installed platform's accessibility interface. Has no state. Calls are synchronous
/// and belong on the main thread; those that throw throw `WindowManagerError` only.
class WindowManager final : public WindowManaging {
public:
    [[nodiscard]] static WindowManager& shared();

    /// Whether this process may move windows; never prompts.
    [[nodiscard]] bool isAccessibilityGranted() const;
    /// Like `isAccessibilityGranted()`, and lets the system prompt the user where it is not.
    bool requestAccessibilityPermission();

    void moveFocusedWindow(const ZoneRect& rect) override;
    /// Makes the focused window fill a zone of a screen; of the one under the pointer, else of the
    /// main one, when `screen` is null.
    void snapFocusedWindow(const Zone& zone, const ScreenPtr& screen);
    /// The window under a point of AppKit screen space; none where there is none.
    [[nodiscard]] std::optional<AccessibilityElement>
    windowElementAtScreenPoint(AppKitPoint point) const;
    /// Makes a window fill a zone of a screen.
    void snap(const AccessibilityElement& window, const Zone& zone, const Screen& screen);
    /// The first screen whose frame holds the pointer; null when none does.
    [[nodiscard]] static ScreenPtr screenWithMouse();

private:
    friend class SharedInstance<WindowManager>;
    WindowManager() = default;

    [[nodiscard]] AccessibilityElement resolveFocusedWindow() const;
    void setFrame(const AccessibilityElement& window, const ZoneRect& rect);
    [[nodiscard]] std::optional<AccessibilityElement>
    enclosingWindow(const AccessibilityElement& element) const;
    [[nodiscard]] QString describe(const AccessibilityElement& window) const;
};

} // namespace tilewright
