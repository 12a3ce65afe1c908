#pragma once

#include "Geometry.h"

#include <QRect>

class QScreen;

namespace tilewright {

/// A point in Qt space: Qt's own whole points, origin at the top-left of its desktop, y downward.
/// Widgets live here.
struct QtPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const QtPoint&, const QtPoint&) = default;
};

/// A rectangle in Qt space; half-open.
struct QtRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] int maxX() const { return x + width; }
    [[nodiscard]] int maxY() const { return y + height; }
    [[nodiscard]] QtPoint center() const { return {x + width / 2, y + height / 2}; }

    /// What Qt's own functions answer, and take.
    [[nodiscard]] static QtRect of(const QRect& rect) {
        return {rect.x(), rect.y(), rect.width(), rect.height()};
    }
    [[nodiscard]] QRect toQRect() const { return {x, y, width, height}; }

    friend bool operator==(const QtRect&, const QtRect&) = default;
};

/// The only way between AppKit screen space and Qt space, on one of Qt's screens: Qt scales each
/// about the screen's top-left corner.
class QtSpace {
public:
    /// Counts like AppKit screen space on no screen of Qt's.
    QtSpace() = default;
    /// `corner` is the top-left corner of Qt's screen, `scale` how many points of AppKit screen
    /// space one point of Qt is long.
    QtSpace(QScreen* screen, AppKitPoint corner, QtPoint qtCorner, double scale)
        : screen_(screen)
        , corner_(corner)
        , qtCorner_(qtCorner)
        , scale_(scale) {}

    /// Qt's screen, for as long as its screens stay as they are; null without one.
    [[nodiscard]] QScreen* screen() const { return screen_; }

    /// The nearest rectangle, its edges rounded; for an empty one, the point that holds it.
    [[nodiscard]] QtRect toQt(const AppKitRect& rect) const;
    /// The largest rectangle inside.
    [[nodiscard]] QtRect insideQt(const AppKitRect& rect) const;
    [[nodiscard]] AppKitRect toAppKit(const QtRect& rect) const;

private:
    using Rounding = double (*)(double);
    [[nodiscard]] QtRect rounded(const AppKitRect& rect, Rounding low, Rounding high) const;

    QScreen* screen_ = nullptr;
    AppKitPoint corner_;
    QtPoint qtCorner_;
    double scale_ = 1;
};

} // namespace tilewright
