#pragma once

#include <QString>

namespace tilewright {

/// What a process on Linux found when it looked around, before it chose a desktop.
struct SessionFacts {
    /// What answers where the environment says that an X server is.
    enum class XServer {
        none,
        independent,
        /// It says itself that it belongs to a Wayland compositor.
        besideWayland,
    };
    XServer xServer = XServer::none;
    /// A Wayland compositor accepts connections.
    bool hasWaylandCompositor = false;
    /// The environment calls this a Wayland session: mere words, which may be stale.
    bool isCalledWayland = false;
    /// Somebody owns GNOME Shell's name on the session bus, by the bus's word.
    bool hasGnomeShell = false;
    /// Somebody owns KWin's name there, by the bus's word: it is the window manager of Plasma's X11
    /// sessions as well.
    bool hasKWin = false;
    /// Qt can be a client of a Wayland compositor: what it needs for that is a package of its own.
    bool hasQtWayland = true;
};

/// The desktop that serves a session.
enum class DesktopChoice {
    /// There is none.
    none,
    /// An X11 session: its windows can be moved.
    x11,
    /// The X server beside a Wayland compositor, whose own windows are out of reach.
    x11BesideWayland,
    /// A Wayland compositor alone, as far as Qt knows it: nothing can be moved.
    wayland,
    /// GNOME on Wayland: its shell lets a companion in.
    gnome,
    /// Plasma on Wayland: KWin runs scripts, and lets programs lay surfaces over all others.
    plasma,
};

/// The desktop for what was found. What is really there counts; the environment's word only where
/// an X server and a Wayland compositor are both there and the server does not say whose it is.
[[nodiscard]] DesktopChoice chooseDesktop(const SessionFacts& facts);

/// A line for the user where there is no desktop: what was looked for, and where. A place is empty
/// where the environment names none.
[[nodiscard]] QString noDesktopMessage(const QString& xDisplay, const QString& waylandSocket);

} // namespace tilewright
