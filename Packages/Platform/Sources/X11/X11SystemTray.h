#pragma once

#include "X11SelectionOwner.h"

#include <FreeDesktop/SystemTray.h>

namespace tilewright {

/// The X screen's system tray: whoever owns its selection. The connection has to outlive it.
class X11SystemTray final : public SystemTray {
    Q_OBJECT

public:
    explicit X11SystemTray(X11Connection& connection);

    [[nodiscard]] bool isThere() const override { return owner_.window() != XCB_NONE; }

private:
    X11SelectionOwner owner_;
};

} // namespace tilewright
