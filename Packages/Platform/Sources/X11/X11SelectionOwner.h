#pragma once

#include "X11Connection.h"

namespace tilewright {

/// Follows who owns a selection of the X server: how managers of the screen, of its settings, of
/// its compositing, are known. Main thread only; the connection has to outlive it.
class X11SelectionOwner final : public QObject {
    Q_OBJECT

public:
    X11SelectionOwner(X11Connection& connection, xcb_atom_t selection);

    /// The owner's window; none where nobody owns the selection. As it was known last while the
    /// server does not answer.
    [[nodiscard]] xcb_window_t window() const { return window_; }

Q_SIGNALS:
    /// The selection was taken, by the same owner or another one, or given up.
    void changed();

private:
    void read();

    X11Connection& connection_;
    const xcb_atom_t selection_;
    X11Listener listener_;
    xcb_window_t window_ = XCB_NONE;
};

} // namespace tilewright
