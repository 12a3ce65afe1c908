#pragma once

#include "X11Screens.h"

#include <Platform/Pointer.h>

namespace tilewright {

/// The X server's pointer: the centre of the pixel it is on.
class X11Pointer final : public Pointer {
public:
    X11Pointer(X11Connection& connection, const X11Screens& screens)
        : connection_(connection)
        , screens_(screens) {}

    AppKitPoint location() const override;

private:
    X11Connection& connection_;
    const X11Screens& screens_;
    mutable QPoint lastPlace_;
};

} // namespace tilewright
