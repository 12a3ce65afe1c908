#pragma once

#include "Zone.h"

namespace tilewright {

/// From the pointer to normalized zone space.
class ZoneHitTesting {
public:
    ZoneHitTesting() = delete;

    /// Where the pointer (AppKit screen space) is on the display's visible frame; none when it is
    /// not over it.
    [[nodiscard]] static std::optional<NormalizedPoint>
    normalizedPointForMouseLocation(AppKitPoint location, const Screen& screen);
};

} // namespace tilewright
