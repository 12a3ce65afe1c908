#include "ZoneHitTesting.h"

namespace tilewright {

std::optional<NormalizedPoint>
ZoneHitTesting::normalizedPointForMouseLocation(AppKitPoint location, const Screen& screen) {
    const AppKitRect visible = screen.visibleFrame();
    // Every test is put so that a coordinate that is not a number fails it.
    if (!(visible.width > 0) || !(visible.height > 0))
        return std::nullopt;
    const double x = (location.x - visible.minX()) / visible.width;
    if (!(x >= 0 && x <= 1))
        return std::nullopt;
    const double y = (visible.maxY() - location.y) / visible.height;
    if (!(y >= 0 && y <= 1))
        return std::nullopt;
    return NormalizedPoint{x, y};
}

} // namespace tilewright
