#pragma once

#include "BareListener.h"

#include <atomic>
#include <optional>

/// The least that a program can do to show something during a drag: hears the first move of the
/// pointer and maps a window that is there already and that the server fills, in a thread of its
/// own and without any of this program's code.
class BareOverlay {
public:
    /// Connects to a display; the window covers its whole screen, half transparent where something
    /// blends windows.
    BareOverlay(const char* display, bool isBlended);
    BareOverlay(const BareOverlay&) = delete;
    BareOverlay& operator=(const BareOverlay&) = delete;
    ~BareOverlay();

    /// The next move of the pointer shows the window.
    void arm() { isArmed_ = true; }
    /// Takes the window away.
    void hide();

private:
    void createWindow(bool isBlended);

    xcb_connection_t* connection_;
    const xcb_screen_t* screen_;
    std::uint32_t window_;
    std::atomic<bool> isArmed_ = false;
    std::optional<BareListener> listener_;
};
