#pragma once

#include "X11Connection.h"

#include <FreeDesktop/ScreenSaver.h>

namespace tilewright {

/// The X server's own screen saver, which includes its display power management. The server ends
/// the suspension itself when the connection goes.
class X11ScreenSaver final : public ScreenSaver {
public:
    /// The connection outlives this.
    explicit X11ScreenSaver(X11Connection& connection);

    [[nodiscard]] Suspension suspend() override;
    void resume() override;

private:
    [[nodiscard]] bool serverCanSuspend();

    X11Connection& connection_;
    const bool canSuspend_;
};

} // namespace tilewright
