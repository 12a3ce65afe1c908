#pragma once

#include "X11Connection.h"

#include <Platform/InstanceActivation.h>

namespace tilewright {

/// One instance per X display, whatever becomes of the session bus: the first one owns a selection,
/// which the server takes from it when it ends, however it ends. Of a server that does not answer
/// every start is the first.
class X11InstanceActivation final : public InstanceActivation {
    Q_OBJECT

public:
    /// The connection has to outlive this.
    explicit X11InstanceActivation(X11Connection& connection);
    ~X11InstanceActivation() override;

    [[nodiscard]] Claim claim() override;

private:
    void ask(xcb_window_t first);
    void heard(const xcb_generic_event_t& event);

    X11Connection& connection_;
    const xcb_atom_t selection_;
    xcb_window_t window_ = XCB_NONE;
    X11Listener listener_;
};

} // namespace tilewright
