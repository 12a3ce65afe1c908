#pragma once

#include <QString>

namespace tilewright {

/// What answers where an X server is said to be.
enum class X11Server {
    /// Nothing.
    none,
    /// A server that has its displays to itself, or draws into a window of another one.
    independent,
    /// One that shows X programs in the session of a Wayland compositor, whose own windows are out
    /// of its reach.
    besideWayland,
};

/// Connects to the X server of a display, or of the environment's where the name is empty, asks it
/// what it is, and leaves. A server that does not say so counts as independent.
[[nodiscard]] X11Server probeX11Server(const QString& display = {});

} // namespace tilewright
