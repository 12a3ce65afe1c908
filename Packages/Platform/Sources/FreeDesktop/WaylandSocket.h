#pragma once

#include "FileDescriptor.h"

#include <QProcessEnvironment>
#include <QString>

namespace tilewright {

/// Where a Wayland compositor listens according to an environment: the path of its socket; empty
/// where the environment names no place.
[[nodiscard]] QString waylandSocketPath(const QProcessEnvironment& environment);

/// What came of connecting to a Wayland compositor's socket.
struct WaylandSocketResult {
    enum class Outcome {
        connected,
        /// Full of others who wait for their turn: somebody is there.
        crowded,
        /// There is no such socket, or nobody listens at it.
        nobody,
    };

    Outcome outcome = Outcome::nobody;
    /// Does not block; open when connected.
    FileDescriptor descriptor;
};

/// Connects to the socket at a path. Returns at once.
[[nodiscard]] WaylandSocketResult connectToWaylandSocket(const QString& socketPath);

/// Whether something accepts connections there now, or a connection has been handed to this
/// process. A socket that a compositor left behind does not. Returns at once.
[[nodiscard]] bool isWaylandCompositorThere(const QProcessEnvironment& environment);

} // namespace tilewright
