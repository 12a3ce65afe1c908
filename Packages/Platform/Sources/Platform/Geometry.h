#pragma once

#include <QtGlobal>

namespace tilewright {

/// A point in AppKit screen space: points, origin at the bottom-left corner of the primary display,
/// y upward. The pointer lives here.
struct AppKitPoint {
    double x = 0;
    double y = 0;

    friend bool operator==(const AppKitPoint&, const AppKitPoint&) = default;
};

/// A rectangle in AppKit screen space: points, (x, y) is the bottom-left corner. Display frames and
/// the overlay live here. Half-open: a point on the maximum x or y edge is outside.
struct AppKitRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] double minX() const { return width < 0 ? x + width : x; }
    [[nodiscard]] double minY() const { return height < 0 ? y + height : y; }
    [[nodiscard]] double maxX() const { return width < 0 ? x : x + width; }
    [[nodiscard]] double maxY() const { return height < 0 ? y : y + height; }
    /// An empty rectangle's centre is the point where it lies.
    [[nodiscard]] AppKitPoint center() const { return {x + width / 2, y + height / 2}; }
    [[nodiscard]] bool isEmpty() const { return width == 0 || height == 0; }

    /// Whether the rectangle holds the point; the maximum edges are outside, an empty rectangle
    /// holds nothing, and so does one with a coordinate that is not a number.
    [[nodiscard]] bool contains(AppKitPoint point) const {
        return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
    }

    friend bool operator==(const AppKitRect&, const AppKitRect&) = default;
};

/// A point in Accessibility screen space: points, origin at the top-left corner of the primary
/// display, y downward. Window positions live here.
struct AXPoint {
    double x = 0;
    double y = 0;

    friend bool operator==(const AXPoint&, const AXPoint&) = default;
};

/// A size in points, as windows have it in Accessibility screen space.
struct AXSize {
    double width = 0;
    double height = 0;

    friend bool operator==(const AXSize&, const AXSize&) = default;
};

} // namespace tilewright
