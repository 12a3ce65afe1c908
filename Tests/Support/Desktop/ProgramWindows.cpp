#include "ProgramWindows.h"

#include <cmath>

namespace tilewright::testing {

namespace {

// In points.
constexpr int panelWidth = 300;
/// The room for the panel's shadow, where the desktop blends windows.
constexpr int shadow = 22;

} // namespace

std::optional<XInspector::Window> overlayWindow(const XInspector& look, pid_t program) {
    std::optional<XInspector::Window> overlay;
    for (const XInspector::Window window : look.windowsOf(program)) {
        if (look.isOverrideRedirect(window) &&
            !look.property(window, "_NET_WM_BYPASS_COMPOSITOR").empty())
            overlay = window;
    }
    return overlay;
}

std::optional<QRect> openPanelFrame(const XInspector& look, pid_t program, double scale) {
    // A point that is more than a pixel may be rounded.
    const int tolerance = scale == 1 ? 0 : 1;
    const auto isWide = [&](const QRect& frame, int points) {
        return std::abs(frame.width() - points * scale) <= tolerance;
    };
    for (const XInspector::Window window : look.windowsOf(program)) {
        if (!look.isMapped(window) || !look.isOverrideRedirect(window))
            continue;
        const QRect frame = look.clientFrame(window);
        if (isWide(frame, panelWidth))
            return frame;
        if (isWide(frame, panelWidth + 2 * shadow)) {
            const int margin = static_cast<int>(std::lround(shadow * scale));
            return frame.adjusted(margin, margin, -margin, -margin);
        }
    }
    return std::nullopt;
}

} // namespace tilewright::testing
