#pragma once

#include "Geometry.h"

namespace tilewright {

/// The mouse pointer. Main thread only.
class Pointer {
public:
    virtual ~Pointer() = default;

    /// Where the pointer is now, in AppKit screen space. The last known place when the desktop
    /// does not answer. While an event is handed out, a backend that has read the place for it
    /// answers that, and asks nobody.
    [[nodiscard]] virtual AppKitPoint location() const = 0;
};

} // namespace tilewright
