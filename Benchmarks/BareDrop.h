#pragma once

#include "BareFrameRequest.h"
#include "BareListener.h"

#include <mutex>

/// The least that a program can do upon the end of a drag: hears the button's release and sets a
/// window's frame (`BareFrameRequest`), in a thread of its own and without any of this program's
/// code.
class BareDrop {
public:
    /// Connects to a display for one window of it.
    BareDrop(const char* display, std::uint32_t window);

    /// The next releases of any button set the window to this outer frame.
    void aim(const BareFrame& outer);

private:
    BareFrameRequest request_;
    std::mutex mutex_;
    BareFrame outer_;
    BareListener listener_;
};
