#include "Zone.h"

#include "CoordinateConverter.h"

namespace tilewright {

ZoneRect Zone::axRect(const Screen& screen) const {
    const AppKitRect visible = screen.visibleFrame();
    const double left = visible.x + x * visible.width;
    const double bottom = visible.y + visible.height * (1 - (y + height));
    return CoordinateConverter::appKitToAX(
        {left, bottom, width * visible.width, height * visible.height}, screen);
}

} // namespace tilewright
