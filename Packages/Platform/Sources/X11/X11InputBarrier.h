#pragma once

#include <Platform/Lifetime.h>
#include <Platform/MainLoop.h>
#include <Platform/Pointer.h>

namespace tilewright {

/// Tells input that happened before some moment from what is newer, where the monitors hear of
/// input later than Qt or a tray's host does. Main thread only.
class X11InputBarrier {
public:
    /// The pointer is one whose every answer is a round trip to the server. Both have to outlive
    /// the barrier.
    X11InputBarrier(const Pointer& pointer, MainLoop& loop)
        : pointer_(pointer)
        , loop_(loop) {}

    /// Calls back from the event loop once the event monitors have been told of all input that
    /// happened before this call: monitors added then hear only of what is newer. Not called any
    /// more once the barrier is gone. Costs two round trips.
    void whenPassed(std::function<void()> then) const;

private:
    void afterOneAnswer(std::function<void()> then) const;

    const Pointer& pointer_;
    MainLoop& loop_;
    Lifetime life_;
};

} // namespace tilewright
