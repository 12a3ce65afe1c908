#pragma once

namespace tilewright {

/// A rectangle in Accessibility screen space: points, origin at the top-left corner of the primary
/// display, y downward. The form in which a zone is handed to the window mover.
struct ZoneRect {
    double x;
    double y;
    double width;
    double height;

    friend bool operator==(const ZoneRect&, const ZoneRect&) = default;
};

} // namespace tilewright
