#include "Screens.h"

#include <algorithm>

namespace tilewright {

namespace {

/// How far the point is from the rectangle, measured along the axes.
double distance(const AppKitRect& rect, AppKitPoint point) {
    return std::max({rect.minX() - point.x, 0.0, point.x - rect.maxX()}) +
           std::max({rect.minY() - point.y, 0.0, point.y - rect.maxY()});
}

} // namespace

Screen::~Screen() = default;
Screens::~Screens() = default;

ScreenPtr Screens::at(AppKitPoint point) const {
    const std::vector<ScreenPtr>& screens = all();
    const auto found = std::find_if(screens.begin(), screens.end(), [point](const auto& screen) {
        return screen->frame().contains(point);
    });
    return found == screens.end() ? nullptr : *found;
}

ScreenPtr Screens::nearest(AppKitPoint point) const {
    if (ScreenPtr holding = at(point))
        return holding;
    const std::vector<ScreenPtr>& screens = all();
    const auto found =
        std::min_element(screens.begin(), screens.end(), [point](const auto& a, const auto& b) {
            return distance(a->frame(), point) < distance(b->frame(), point);
        });
    return found == screens.end() ? nullptr : *found;
}

} // namespace tilewright
