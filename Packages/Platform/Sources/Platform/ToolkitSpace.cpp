#include "ToolkitSpace.h"

#include <cmath>

namespace tilewright {

ToolkitRect ToolkitSpace::toToolkit(const AppKitRect& rect) const {
    return rect.isEmpty() ? rounded(rect, std::floor, std::floor)
                          : rounded(rect, std::round, std::round);
}

ToolkitRect ToolkitSpace::insideToolkit(const AppKitRect& rect) const {
    return rounded(rect, std::ceil, std::floor);
}

ToolkitRect ToolkitSpace::rounded(const AppKitRect& rect, Rounding low, Rounding high) const {
    const int left = static_cast<int>(low((rect.minX() - corner_.x) / scale_));
    const int top = static_cast<int>(low((corner_.y - rect.maxY()) / scale_));
    const int right = static_cast<int>(high((rect.maxX() - corner_.x) / scale_));
    const int bottom = static_cast<int>(high((corner_.y - rect.minY()) / scale_));
    return {toolkitCorner_.x + left, toolkitCorner_.y + top, right - left, bottom - top};
}

AppKitRect ToolkitSpace::toAppKit(const ToolkitRect& rect) const {
    return {corner_.x + (rect.x - toolkitCorner_.x) * scale_,
            corner_.y - (rect.maxY() - toolkitCorner_.y) * scale_, rect.width * scale_,
            rect.height * scale_};
}

} // namespace tilewright
