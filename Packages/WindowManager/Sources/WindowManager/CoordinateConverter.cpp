#include "CoordinateConverter.h"

#include <Platform/Platform.h>

#include <cmath>

namespace tilewright {

namespace {

double referenceHeight(const Screen& screen) {
    const auto& screens = Platform::current().screens.all();
    return screens.empty() ? screen.frame().height : screens.front()->frame().height;
}

} // namespace

ZoneRect CoordinateConverter::appKitToAX(const AppKitRect& rect, const Screen& screen) {
    const double width = std::abs(rect.width);
    const double height = std::abs(rect.height);
    return {rect.x, referenceHeight(screen) - (rect.y + height), width, height};
}

AppKitRect CoordinateConverter::axToAppKit(const ZoneRect& rect, const Screen& screen) {
    return {rect.x, referenceHeight(screen) - (rect.y + rect.height), rect.width, rect.height};
}

} // namespace tilewright
