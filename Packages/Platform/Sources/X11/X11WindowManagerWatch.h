#pragma once

#include "X11EventSelection.h"

#include <QObject>
#include <vector>

namespace tilewright {

/// Follows which window manager runs and what it offers, while it comes, goes and is replaced.
/// Main thread only.
class X11WindowManagerWatch final : public QObject {
    Q_OBJECT

public:
    X11WindowManagerWatch(X11Connection& connection, X11EventSelection& selection);

    /// Whether a window manager that follows the extended hints runs, as far as events have told.
    [[nodiscard]] bool isRunning() const { return checkWindow_ != XCB_NONE; }
    /// Whether it says that it supports a hint.
    [[nodiscard]] bool supports(X11Atom hint) const { return supports(connection_.atom(hint)); }
    [[nodiscard]] bool supports(xcb_atom_t hint) const;

    /// Whether the window manager itself made a window, rather than one of the applications whose
    /// windows it manages. Asks nobody: a window's number tells which connection it was made on.
    [[nodiscard]] bool made(xcb_window_t window) const;

    /// Asks whether the window manager still runs right now; `takeIsAlive` has the answer. In two
    /// steps, so that it shares a round trip with other requests.
    [[nodiscard]] xcb_get_property_cookie_t requestIsAlive() const;
    [[nodiscard]] bool takeIsAlive(xcb_get_property_cookie_t cookie) const;

Q_SIGNALS:
    /// Another window manager runs, or none, or it offers something else than before.
    void changed();

private:
    void refresh();
    /// Hears of the end of a check window, and of whether it names itself.
    void follow(xcb_window_t window);

    X11Connection& connection_;
    X11EventSelection& selection_;
    X11EventSelection::Interest rootInterest_;
    /// In the window that the root window names, whether or not that is to be believed.
    X11EventSelection::Interest checkInterest_;
    X11Listener rootListener_;
    X11Listener checkListener_;
    xcb_window_t checkWindow_ = XCB_NONE;
    std::vector<std::uint32_t> supported_;
};

} // namespace tilewright
