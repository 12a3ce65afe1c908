#pragma once

#include <xcb/xcb.h>

/// What the toolkit has on the X server: its connection is the windows' and nobody else's.
namespace tilewright::x11toolkit {

/// The toolkit's connection, for requests about its own windows that have to keep their place among
/// its own; null where the toolkit does not run on X11. Events are never selected on it.
[[nodiscard]] xcb_connection_t* connection();
/// Whether the toolkit made the window.
[[nodiscard]] bool ownsWindow(xcb_window_t window);
/// Whether a popup of the toolkit holds the pointer.
[[nodiscard]] bool hasGrab();

} // namespace tilewright::x11toolkit
