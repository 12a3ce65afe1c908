#include "FreeSlot.h"

#include <algorithm>
#include <array>

namespace tilewright {

namespace {

constexpr double eps = ZoneEditorGeometry::defaultEps;
constexpr double step = 0.05;
constexpr double limit = 1 + eps;

struct Size {
    double width;
    double height;
};

bool overlaps(const Zone& zone, double x, double y, Size size) {
    return x < zone.x + zone.width - eps && zone.x + eps < x + size.width &&
           y < zone.y + zone.height - eps && zone.y + eps < y + size.height;
}

std::optional<Zone> firstFree(const std::vector<Zone>& zones, Size size) {
    // Repeated addition, not multiples of the step: saved layouts hold the digits that it gives.
    // NOLINTNEXTLINE(bugprone-float-loop-counter,cert-flp30-c)
    for (double y = 0; y + size.height <= limit; y += step) {
        // NOLINTNEXTLINE(bugprone-float-loop-counter,cert-flp30-c)
        for (double x = 0; x + size.width <= limit; x += step) {
            const bool isTaken = std::any_of(zones.begin(), zones.end(), [&](const Zone& zone) {
                return overlaps(zone, x, y, size);
            });
            if (!isTaken) {
                // A position may overshoot the far edge by as much as the tolerance.
                return Zone{.id = QUuid::createUuid(),
                            .name = {},
                            .x = std::min(x, 1 - size.width),
                            .y = std::min(y, 1 - size.height),
                            .width = size.width,
                            .height = size.height};
            }
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<Zone> freeSlot(const std::vector<Zone>& zones, double minZoneSize) {
    const std::array<Size, 7> sizes{{{0.5, 1.0},
                                     {0.5, 0.5},
                                     {1.0 / 3.0, 1.0},
                                     {1.0 / 3.0, 0.5},
                                     {0.25, 0.5},
                                     {0.25, 0.25},
                                     {minZoneSize, minZoneSize}}};
    for (const Size size : sizes) {
        if (auto zone = firstFree(zones, size))
            return zone;
    }
    return std::nullopt;
}

} // namespace tilewright
