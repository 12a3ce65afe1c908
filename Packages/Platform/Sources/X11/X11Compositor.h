#pragma once

#include "X11SelectionOwner.h"

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
    void update();

    X11SelectionOwner owner_;
    bool isRunning_ = false;
};

} // namespace tilewright
