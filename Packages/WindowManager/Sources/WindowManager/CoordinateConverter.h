#pragma once

#include "ZoneRect.h"

#include <Platform/Screens.h>

namespace tilewright {

/// The only way between AppKit screen space and Accessibility screen space. Both are anchored to
/// the primary display of the installed platform, so a display argument counts only while the
/// display list is empty. Nothing is rounded.
class CoordinateConverter {
public:
    CoordinateConverter() = delete;

    /// While the display list is empty, both spaces have their origins in one place.
    [[nodiscard]] static AXPoint appKitToAX(AppKitPoint point);
    /// A negative size of `rect` is taken as its absolute value; its x stays as it is.
    [[nodiscard]] static ZoneRect appKitToAX(const AppKitRect& rect, const Screen& screen);
    /// The inverse flip; sizes are used unchanged.
    [[nodiscard]] static AppKitRect axToAppKit(const ZoneRect& rect, const Screen& screen);
};

} // namespace tilewright
