#include "CoordinateConverter.h"

#include <Platform/Platform.h>

#include <cmath>

namespace tilewright {

namespace {

/// The height of the primary display; of the other one while the display list is empty.
double referenceHeight(double otherHeight) {
    const auto& screens = Platform::current().screens.all();
    return screens.empty() ? otherHeight : screens.front()->frame().height;
}

} // namespace

AXPoint CoordinateConverter::appKitToAX(AppKitPoint point) {
    return {point.x, referenceHeight(0) - point.y};
}

ZoneRect CoordinateConverter::appKitToAX(const AppKitRect& rect, const Screen& screen) {
    const double width = std::abs(rect.width);
    const double height = std::abs(rect.height);
    return {rect.x, referenceHeight(screen.frame().height) - (rect.y + height), width, height};
}

AppKitRect CoordinateConverter::axToAppKit(const ZoneRect& rect, const Screen& screen) {
    return {rect.x, referenceHeight(screen.frame().height) - (rect.y + rect.height), rect.width,
            rect.height};
}

} // namespace tilewright
