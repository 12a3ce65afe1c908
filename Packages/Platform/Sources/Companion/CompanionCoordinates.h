#pragma once

#include "CompanionMessage.h"

#include <Platform/Geometry.h>

#include <algorithm>
#include <cmath>

namespace tilewright {

/// The way between a companion's units (origin at the top-left corner of the whole desktop, y
/// downward) and the two screen spaces of this program, both anchored to the primary display. One
/// point is one unit. A window's frame is rounded here and nowhere else: its edges are, its size
/// never, so that neighbours stay neighbours.
class CompanionCoordinates {
public:
    CompanionCoordinates() = default;
    /// `primary` is the primary display's frame.
    explicit CompanionCoordinates(const CompanionRect& primary)
        : primary_(primary) {}

    [[nodiscard]] AppKitRect toAppKit(const CompanionRect& rect) const {
        return {rect.x - primary_.x, primary_.y + primary_.height - rect.y - rect.height,
                rect.width, rect.height};
    }
    /// The middle of the unit that holds the point: the top row and the last column belong to their
    /// display.
    [[nodiscard]] AppKitPoint toAppKit(CompanionPoint point) const {
        return {std::floor(point.x) + 0.5 - primary_.x,
                primary_.y + primary_.height - std::floor(point.y) - 0.5};
    }
    [[nodiscard]] AXPoint toAX(CompanionPoint point) const {
        return {point.x - primary_.x, point.y - primary_.y};
    }
    /// The nearest rectangle; for an empty one, the unit that holds it, without a size.
    [[nodiscard]] CompanionRect toCompanion(const AppKitRect& rect) const {
        if (rect.isEmpty())
            return {std::floor(rect.minX() + primary_.x),
                    std::floor(primary_.y + primary_.height - rect.maxY()), 0, 0};
        return withRoundEdges(rect.minX() + primary_.x, primary_.y + primary_.height - rect.maxY(),
                              rect.maxX() + primary_.x, primary_.y + primary_.height - rect.minY());
    }
    [[nodiscard]] CompanionRect toCompanion(AXPoint position, AXSize size) const {
        const double left = position.x + primary_.x;
        const double top = position.y + primary_.y;
        return withRoundEdges(left, top, left + size.width, top + size.height);
    }
    [[nodiscard]] static CompanionRect withRoundEdges(const CompanionRect& rect) {
        return withRoundEdges(rect.x, rect.y, rect.x + rect.width, rect.y + rect.height);
    }
    /// The nearest rectangle whose edges are whole numbers, within what a companion takes.
    [[nodiscard]] static CompanionRect withRoundEdges(double left, double top, double right,
                                                      double bottom) {
        const double x = rounded(left);
        const double y = rounded(top);
        return {x, y, std::max(rounded(right) - x, 0.0), std::max(rounded(bottom) - y, 0.0)};
    }

    friend bool operator==(const CompanionCoordinates&, const CompanionCoordinates&) = default;

private:
    [[nodiscard]] static double rounded(double value) {
        constexpr double limit = 1e6;
        return value >= -limit ? std::min(std::round(value), limit) : -limit;
    }

    CompanionRect primary_;
};

} // namespace tilewright
