#pragma once

#include <cstdint>
#include <xcb/xcb.h>

/// A frame in the X screen's pixels: the outer corner, and the outer size.
struct BareFrame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// The least that a program can do to set a window's frame, on a connection of its own and without
/// any of this program's code: what the benchmark of window frames compares with.
class BareFrameRequest {
public:
    /// Connects to a display for one window of it.
    BareFrameRequest(const char* display, std::uint32_t window);
    BareFrameRequest(const BareFrameRequest&) = delete;
    BareFrameRequest& operator=(const BareFrameRequest&) = delete;
    ~BareFrameRequest();

    /// Reads in one round trip what the request depends on (whether the window is managed, by whom,
    /// its states, its decorations and its shadow), and sends the one request. False, without a
    /// request, where the window is not managed or a state pins it.
    bool set(const BareFrame& outer);

private:
    [[nodiscard]] xcb_atom_t atom(const char* name) const;
    [[nodiscard]] xcb_get_property_cookie_t ask(xcb_window_t window, xcb_atom_t property) const;

    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
    xcb_window_t window_;
    xcb_window_t manager_ = 0;
    xcb_atom_t supportingCheck_ = 0;
    xcb_atom_t managedState_ = 0;
    xcb_atom_t states_ = 0;
    xcb_atom_t maximizedHorizontally_ = 0;
    xcb_atom_t maximizedVertically_ = 0;
    xcb_atom_t fullscreen_ = 0;
    xcb_atom_t shaded_ = 0;
    xcb_atom_t decorations_ = 0;
    xcb_atom_t shadow_ = 0;
    xcb_atom_t moveResize_ = 0;
};
