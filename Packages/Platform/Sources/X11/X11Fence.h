#pragma once

#include "X11Connection.h"

namespace tilewright {

/// Tells when the window manager has come to all that was asked of it before: it is asked for the
/// decorations of a window that is never shown, and answers in its turn. Main thread only.
class X11Fence {
public:
    /// `reached` is called when the window manager has come to the last fence that was sent.
    X11Fence(X11Connection& connection, std::function<void()> reached);
    X11Fence(const X11Fence&) = delete;
    ~X11Fence();

    /// Sends a fence after the requests made so far.
    void send();

private:
    X11Connection& connection_;
    std::function<void()> reached_;
    xcb_window_t window_;
    X11Listener listener_;
    int outstanding_ = 0;
};

} // namespace tilewright
