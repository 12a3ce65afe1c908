#pragma once

#include <vector>
#include <xcb/xcb.h>

/// What Qt has on the X server: its connection is the windows' and nobody else's.
namespace tilewright::x11qt {

/// Qt's connection, for requests about its own windows that have to keep their place among
/// its own; null where Qt does not run on X11. Events are never selected on it.
[[nodiscard]] xcb_connection_t* connection();
/// Whether Qt made the window.
[[nodiscard]] bool ownsWindow(xcb_window_t window);
/// Qt's top-level windows on the screen that take presses or keys.
[[nodiscard]] std::vector<xcb_window_t> windowsTakingInput();
/// Whether a popup of Qt holds the pointer.
[[nodiscard]] bool hasGrab();
/// Has the older client library through which Qt sets titles forget the requests that it
/// has sent: it keeps an entry for each until it is next told an answer, and Qt never asks
/// it for one. Nothing where Qt does not run on X11.
///
/// Waits for a round trip, and that without a bound: to be called when the server has just given
/// another answer, so that nobody else holds it.
void forgetSentTitles();

} // namespace tilewright::x11qt
