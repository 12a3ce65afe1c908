#pragma once

#include "X11EventSelection.h"
#include "X11PlaceChanges.h"

namespace tilewright {

/// The windows that change place while the left button is held: most likely the one that the window
/// manager moves for the user. Selects nothing while the button is up. Main thread only; the
/// arguments have to outlive it.
class X11MovedWindows {
public:
    X11MovedWindows(X11Connection& connection, X11EventSelection& selection)
        : connection_(connection)
        , selection_(selection) {}

    /// The button was pressed: what moved before it counts no more.
    void begin();
    /// The button is held, since a press that may not have been told of, or it is up.
    void setHeld(bool isHeld);

    /// The children of the root window that have moved since the press; none while the button is
    /// up.
    [[nodiscard]] std::vector<xcb_window_t> tops() const { return changes_.moved(); }
    /// Whether there is any.
    [[nodiscard]] bool hasMoved() const { return changes_.hasMoved(); }

private:
    void heard(const xcb_generic_event_t& event);

    X11Connection& connection_;
    X11EventSelection& selection_;
    X11EventSelection::Interest interest_;
    X11Listener listener_;
    X11PlaceChanges changes_;
};

} // namespace tilewright
