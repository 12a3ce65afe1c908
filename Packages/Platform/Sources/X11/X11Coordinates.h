#pragma once

#include <FreeDesktop/NativePixel.h>
#include <Platform/Geometry.h>

#include <QPoint>
#include <QRect>
#include <cmath>

namespace tilewright {

/// The way between the X screen's pixels (origin at the top-left of the whole screen, y downward)
/// and the two screen spaces of this program, both anchored to the primary monitor. One point is
/// one pixel. A window's frame is rounded here and nowhere else: its edges are, its size never, so
/// that neighbours stay neighbours.
class X11Coordinates {
public:
    X11Coordinates() = default;
    /// `primary` is the primary monitor's area of the X screen.
    explicit X11Coordinates(const QRect& primary)
        : origin_(primary.topLeft())
        , height_(primary.height()) {}

    [[nodiscard]] AppKitRect toAppKit(const QRect& area) const {
        return {double(area.x() - origin_.x()),
                double(origin_.y() + height_ - area.y() - area.height()), double(area.width()),
                double(area.height())};
    }
    /// The centre of a pixel: the top row and the last column belong to their display.
    [[nodiscard]] AppKitPoint toAppKit(QPoint pixel) const {
        return {pixel.x() - origin_.x() + 0.5, height_ - (pixel.y() - origin_.y() + 0.5)};
    }
    [[nodiscard]] AppKitPoint toAppKit(NativePixel pixel) const {
        return toAppKit(QPoint(pixel.x, pixel.y));
    }
    /// The pixel that holds the point.
    [[nodiscard]] QPoint toPixel(AXPoint point) const {
        return {toInt(std::floor(point.x)) + origin_.x(), toInt(std::floor(point.y)) + origin_.y()};
    }
    [[nodiscard]] AXPoint toAX(QPoint pixel) const {
        return {double(pixel.x() - origin_.x()), double(pixel.y() - origin_.y())};
    }
    /// The pixels of a frame, its edges rounded.
    [[nodiscard]] QRect toPixels(AXPoint position, AXSize size) const {
        const int left = toInt(std::round(position.x));
        const int top = toInt(std::round(position.y));
        const int right = toInt(std::round(position.x + size.width));
        const int bottom = toInt(std::round(position.y + size.height));
        return QRect(left, top, right - left, bottom - top).translated(origin_);
    }

    friend bool operator==(const X11Coordinates&, const X11Coordinates&) = default;

private:
    /// Windows live within 16 bits; anything else, not-a-number included, is cut to that.
    [[nodiscard]] static int toInt(double value) {
        constexpr double limit = 32767;
        return static_cast<int>(value >= -limit ? (value <= limit ? value : limit) : -limit);
    }

    QPoint origin_;
    int height_ = 0;
};

} // namespace tilewright
