#pragma once

#include "X11EventSelection.h"
#include "X11SelectionOwner.h"

#include <QObject>
#include <optional>

namespace tilewright {

/// Whether the user wishes reduced motion, as the X screen's settings manager (XSETTINGS) tells it,
/// followed while the manager changes, comes and goes. Main thread only; the arguments have to
/// outlive it.
class X11ReducedMotion final : public QObject {
    Q_OBJECT

public:
    X11ReducedMotion(X11Connection& connection, X11EventSelection& selection);

    /// None while no manager says anything about it.
    [[nodiscard]] std::optional<bool> prefersReducedMotion() const { return wish_; }

Q_SIGNALS:
    /// `prefersReducedMotion()` has another answer than before.
    void changed();

private:
    void follow(xcb_window_t manager);
    void read();

    X11Connection& connection_;
    X11EventSelection& selection_;
    X11SelectionOwner owner_;
    X11EventSelection::Interest interest_;
    X11Listener propertyListener_;
    xcb_window_t manager_ = XCB_NONE;
    std::optional<bool> wish_;
};

} // namespace tilewright
