#pragma once

#include "X11Screens.h"

#include <Platform/Pointer.h>

#include <optional>

namespace tilewright {

/// The X server's pointer: the centre of the pixel it is on. A bounded round trip each time, unless
/// whoever handles input has just learnt the place (`Known`).
class X11Pointer final : public Pointer {
public:
    X11Pointer(X11Connection& connection, const X11Screens& screens)
        : connection_(connection)
        , screens_(screens) {}

    AppKitPoint location() const override;

    /// The pointer's place in pixels of the X screen, while whoever handles input knows it.
    [[nodiscard]] std::optional<QPoint> known() const {
        return isKnown_ ? std::optional(lastPlace_) : std::nullopt;
    }

    /// While it lives, the pointer is where an answer of the server has it and nobody asks again:
    /// input that is being handled and the place belong together. Not nested.
    class Known {
    public:
        /// In pixels of the X screen. The pointer has to outlive this.
        Known(X11Pointer& pointer, QPoint place);
        Known(const Known&) = delete;
        Known& operator=(const Known&) = delete;
        ~Known();

    private:
        X11Pointer& pointer_;
    };

private:
    X11Connection& connection_;
    const X11Screens& screens_;
    mutable QPoint lastPlace_;
    bool isKnown_ = false;
};

} // namespace tilewright
