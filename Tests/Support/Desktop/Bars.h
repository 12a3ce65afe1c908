#pragma once

#include "DesktopSession.h"

namespace tilewright::testing {

// Bars across an edge of a monitor, the top one unless told, with nothing on them but the items of
// running programs.

/// How high they are, in pixels.
inline constexpr int barHeight = 30;

enum class BarEdge { top, bottom };

/// What Xfce's panel draws of an item that names an installed symbol.
enum class XfceItems {
    /// The item's own picture, or the symbol as the desktop is set up.
    asGiven,
    /// The symbol in the panel's colour, on light ground.
    symbolsOnLight,
    /// The symbol in the panel's colour, on dark ground.
    symbolsOnDark,
};

/// Starts tint2, which takes in items of the X11 system tray, on a monitor counted from 0.
Subprocess& startTint2(DesktopSession& desktop, int monitor = 0, BarEdge edge = BarEdge::top);
/// Starts a bar that does nothing but take them in, in the upper right corner of the screen:
/// trayer, or stalonetray where the release does not have that any longer.
Subprocess& startLoneTray(DesktopSession& desktop);
/// Starts Xfce's panel, which shows status-notifier items.
Subprocess& startXfcePanel(DesktopSession& desktop, XfceItems items = XfceItems::asGiven);

} // namespace tilewright::testing
