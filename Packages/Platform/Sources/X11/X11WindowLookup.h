#pragma once

#include "X11WindowManagerWatch.h"

#include <QPoint>
#include <optional>
#include <vector>

namespace tilewright {

/// The managed window of an application at a place of the X screen, in its pixels, topmost first;
/// none where the wallpaper, a panel, a menu or nothing is on top there, or where the server does
/// not answer.
///
/// Windows without input shape at the place are looked through, and so is what the window manager
/// itself lays over the windows while it moves one: covers, outlines, the size in figures. Its
/// menus and panels are not: those take presses.
///
/// Two round trips, and one for each further level of the window manager's frame; about five more
/// for each window of the window manager that is looked through.
[[nodiscard]] std::optional<xcb_window_t>
applicationWindowAt(X11Connection& connection, const X11WindowManagerWatch& windowManager,
                    QPoint place);

/// The managed window of an application that is in one of those children of the root window, or is
/// one itself; none where there is none, or more than one. As many round trips as a frame of the
/// window manager has levels, for each; none at all for none.
[[nodiscard]] std::optional<xcb_window_t>
onlyApplicationWindowIn(X11Connection& connection, const std::vector<xcb_window_t>& tops);

} // namespace tilewright
