#pragma once

#include <cstdint>
#include <functional>
#include <thread>
#include <xcb/xcb.h>

/// The least that a program can do to hear of the pointer's buttons and moves wherever they are: a
/// connection and a thread of its own, without any of this program's code.
class BareListener {
public:
    /// Connects to a display. `hear` is called, in the thread, for each event of the mask of
    /// XInput's raw events, until this object ends.
    BareListener(const char* display, std::uint32_t events, std::function<void()> hear);
    BareListener(const BareListener&) = delete;
    BareListener& operator=(const BareListener&) = delete;
    ~BareListener();

private:
    void listen();

    xcb_connection_t* connection_;
    int stop_;
    const std::function<void()> hear_;
    std::thread thread_;
};
