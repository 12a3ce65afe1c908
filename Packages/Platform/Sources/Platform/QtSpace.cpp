#include "QtSpace.h"

#include <cmath>

namespace tilewright {

QtRect QtSpace::toQt(const AppKitRect& rect) const {
    return rect.isEmpty() ? rounded(rect, std::floor, std::floor)
                          : rounded(rect, std::round, std::round);
}

QtRect QtSpace::insideQt(const AppKitRect& rect) const {
    return rounded(rect, std::ceil, std::floor);
}

QtRect QtSpace::rounded(const AppKitRect& rect, Rounding low, Rounding high) const {
    const int left = static_cast<int>(low((rect.minX() - corner_.x) / scale_));
    const int top = static_cast<int>(low((corner_.y - rect.maxY()) / scale_));
    const int right = static_cast<int>(high((rect.maxX() - corner_.x) / scale_));
    const int bottom = static_cast<int>(high((corner_.y - rect.minY()) / scale_));
    return {qtCorner_.x + left, qtCorner_.y + top, right - left, bottom - top};
}

AppKitRect QtSpace::toAppKit(const QtRect& rect) const {
    return {corner_.x + (rect.x - qtCorner_.x) * scale_,
            corner_.y - (rect.maxY() - qtCorner_.y) * scale_, rect.width * scale_,
            rect.height * scale_};
}

} // namespace tilewright
