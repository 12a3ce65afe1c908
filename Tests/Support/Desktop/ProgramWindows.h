#pragma once

#include "XInspector.h"

#include <sys/types.h>

namespace tilewright::testing {

// The program's windows that no window manager frames, as the display shows them.

/// The overlay's window, on the screen or not; none before the program has made it.
[[nodiscard]] std::optional<XInspector::Window> overlayWindow(const XInspector& look,
                                                              pid_t program);

/// The frame of the open panel, without its shadow; none while it is closed. `scale` is how many
/// pixels the program's points are.
[[nodiscard]] std::optional<QRect> openPanelFrame(const XInspector& look, pid_t program,
                                                  double scale = 1);

} // namespace tilewright::testing
