#pragma once

#include <chrono>

namespace tilewright {

/// What blanks the display (and puts it into power saving) for lack of input within the display
/// server or the compositor itself. Main thread only.
///
/// A suspension ends when it is resumed, and by itself when the process dies.
class ScreenSaver {
public:
    virtual ~ScreenSaver() = default;

    /// Asks that the saver does not start until each suspension has been resumed. Does not wait for
    /// the server, which may come to it later.
    virtual void suspend() = 0;
    /// Whether the server has granted the newest suspension; waits for its answer as long as the
    /// bound allows, and takes none for a no.
    [[nodiscard]] virtual bool isSuspended(std::chrono::milliseconds bound) = 0;
    /// Ends one suspension, also one that the server has yet to come to.
    virtual void resume() = 0;
};

} // namespace tilewright
