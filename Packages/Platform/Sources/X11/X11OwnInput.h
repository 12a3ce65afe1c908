#pragma once

#include "X11Connection.h"
#include "X11InputState.h"

#include <functional>
#include <optional>
#include <vector>

namespace tilewright {

/// What is known of this application's own windows without the X server. A function that is not set
/// stands for none and no.
struct X11OwnWindows {
    /// Whether a window was made by this application.
    std::function<bool(xcb_window_t)> owns;
    /// Whether a popup of this application holds the pointer.
    std::function<bool()> hasGrab;
    /// The windows on the screen that take presses or keys; no others can have the pointer or the
    /// keyboard.
    std::function<std::vector<xcb_window_t>()> takingInput;
};

/// Finds out whose the pointer and the keyboard are.
///
/// While no window of this application takes input nothing is asked. Otherwise the questions are
/// sent ahead, together with that for the pointer, and answered with it: input of another
/// application costs no wait, save where a window of this application lies beneath the pointer.
/// Main thread only; the connection has to outlive it.
class X11OwnInput {
public:
    X11OwnInput(X11Connection& connection, X11OwnWindows own);
    X11OwnInput(const X11OwnInput&) = delete;
    ~X11OwnInput();

    /// A button was pressed: a popup that holds the pointer now may be gone when answers come.
    void notePress();
    /// Sends the questions. To be called just before the server is asked for the pointer.
    void ask();
    /// The owners, by that pointer, which is relative to the root window and may be null. Asks, and
    /// waits, if nobody has.
    [[nodiscard]] X11InputOwners take(const xcb_query_pointer_reply_t* pointer);
    /// Forgets presses, and does without the answers to what was asked.
    void reset();

private:
    struct Asked {
        xcb_query_pointer_cookie_t pointer;
        xcb_get_geometry_cookie_t geometry;
    };

    void dropQuestions();
    [[nodiscard]] bool owns(xcb_window_t window) const;
    [[nodiscard]] bool takeIsWithin(const Asked& asked);
    [[nodiscard]] bool isOwnAtPointer(xcb_window_t top);

    X11Connection& connection_;
    const X11OwnWindows own_;
    bool isAsked_ = false;
    std::optional<xcb_get_input_focus_cookie_t> focus_;
    std::vector<Asked> windows_;
    bool hadGrab_ = false;
};

} // namespace tilewright
