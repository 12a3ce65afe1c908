#include "X11Compositor.h"

namespace tilewright {

X11Compositor::X11Compositor(X11Connection& connection)
    : owner_(connection, connection.compositorSelection())
    , isRunning_(owner_.window() != XCB_NONE) {
    connect(&owner_, &X11SelectionOwner::changed, this, &X11Compositor::update);
}

void X11Compositor::update() {
    // One may take the place of another.
    const bool isRunning = owner_.window() != XCB_NONE;
    if (isRunning == isRunning_)
        return;
    isRunning_ = isRunning;
    Q_EMIT runningChanged();
}

} // namespace tilewright
