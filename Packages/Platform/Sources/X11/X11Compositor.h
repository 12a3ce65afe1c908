#pragma once

#include "X11Connection.h"

namespace tilewright {

/// Whether a compositing manager blends the windows of the X screen, followed while the program
/// runs. Main thread only; the connection has to outlive it.
class X11Compositor final : public QObject {
    Q_OBJECT

public:
    explicit X11Compositor(X11Connection& connection);

    [[nodiscard]] bool isRunning() const { return isRunning_; }

Q_SIGNALS:
    /// A compositing manager came or went; `isRunning()` has the new state.
    void runningChanged();

private:
    void update(bool isRunning);
    /// As it was known where the server does not answer.
    [[nodiscard]] bool readIsRunning();

    X11Connection& connection_;
    xcb_atom_t selection_ = XCB_ATOM_NONE;
    X11Listener listener_;
    bool isRunning_ = false;
};

} // namespace tilewright
