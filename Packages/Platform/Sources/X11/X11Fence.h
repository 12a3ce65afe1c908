#pragma once

#include "X11Connection.h"

namespace tilewright {

/// Tells when the window manager has come to all that was asked of it before: it is asked for the
/// decorations of a window that is never shown, and answers in its turn. Main thread only.
class X11Marker {
public:
    /// `reached` is called when the window manager has come to the last marker that was sent.
    X11Marker(X11Connection& connection, std::function<void()> reached);
    X11Marker(const X11Marker&) = delete;
    ~X11Marker();

    /// Sends a marker after the requests made so far.
    void send();

private:
    X11Connection& connection_;
    std::function<void()> reached_;
    xcb_window_t window_;
    X11Listener listener_;
    int outstanding_ = 0;
};

} // namespace tilewright
