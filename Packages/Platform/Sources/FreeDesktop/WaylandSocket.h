#pragma once

#include <QProcessEnvironment>
#include <QString>

namespace tilewright {

/// Where a Wayland compositor listens according to an environment: the path of its socket; empty
/// where the environment names no place.
[[nodiscard]] QString waylandSocketPath(const QProcessEnvironment& environment);

/// Whether something accepts connections there now, or a connection has been handed to this
/// process. A socket that a compositor left behind does not. Returns at once.
[[nodiscard]] bool isWaylandCompositorThere(const QProcessEnvironment& environment);

} // namespace tilewright
