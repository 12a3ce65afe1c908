#pragma once

#include "X11Connection.h"

#include <FreeDesktop/ScreenSaver.h>

#include <optional>

namespace tilewright {

/// The X server's own screen saver, which includes its display power management. The server ends
/// the suspension itself when the connection goes.
class X11ScreenSaver final : public ScreenSaver {
public:
    /// The connection outlives this.
    explicit X11ScreenSaver(X11Connection& connection);

    void suspend() override;
    [[nodiscard]] bool isSuspended(std::chrono::milliseconds bound) override;
    void resume() override;

private:
    [[nodiscard]] bool serverCanSuspend();
    void forgetOutcome();

    X11Connection& connection_;
    const bool canSuspend_;
    /// The newest suspension, while nobody has asked what has come of it.
    std::optional<xcb_void_cookie_t> newest_;
};

} // namespace tilewright
