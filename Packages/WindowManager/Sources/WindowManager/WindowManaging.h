#pragma once

#include "ZoneRect.h"

namespace tilewright {

/// Something that can move the focused window.
class WindowManaging {
public:
    virtual ~WindowManaging() = default;

    /// Makes the focused window of the frontmost application fill a rectangle of Accessibility
    /// screen space. Throws `WindowManagerError`.
    virtual void moveFocusedWindow(const ZoneRect& rect) = 0;
};

} // namespace tilewright
