#pragma once

namespace tilewright {

/// A pixel as the display server counts them: origin at the top-left corner of the whole desktop, y
/// downward. Only backends know pixels.
struct NativePixel {
    int x = 0;
    int y = 0;

    friend bool operator==(const NativePixel&, const NativePixel&) = default;
};

} // namespace tilewright
