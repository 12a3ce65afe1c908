#pragma once

#include "BareFrameRequest.h"

#include <mutex>
#include <thread>

/// The least that a program can do upon the end of a drag: hears the button's release and sets a
/// window's frame (`BareFrameRequest`), in a thread of its own and without any of this program's
/// code.
class BareDrop {
public:
    /// Connects to a display for one window of it.
    BareDrop(const char* display, std::uint32_t window);
    BareDrop(const BareDrop&) = delete;
    BareDrop& operator=(const BareDrop&) = delete;
    ~BareDrop();

    /// The next releases of any button set the window to this outer frame.
    void aim(const BareFrame& outer);

private:
    void listen();

    BareFrameRequest request_;
    xcb_connection_t* connection_;
    int stop_;
    std::mutex mutex_;
    BareFrame outer_;
    std::thread thread_;
};
