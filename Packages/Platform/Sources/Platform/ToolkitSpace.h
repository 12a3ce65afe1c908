#pragma once

#include "Geometry.h"

#include <QRect>

class QScreen;

namespace tilewright {

/// A point in toolkit space: the toolkit's own whole points, origin at the top-left of its desktop,
/// y downward. Widgets live here.
struct ToolkitPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const ToolkitPoint&, const ToolkitPoint&) = default;
};

/// A rectangle in toolkit space; half-open.
struct ToolkitRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] int maxX() const { return x + width; }
    [[nodiscard]] int maxY() const { return y + height; }
    [[nodiscard]] ToolkitPoint center() const { return {x + width / 2, y + height / 2}; }

    /// What the toolkit's own functions answer, and take.
    [[nodiscard]] static ToolkitRect of(const QRect& rect) {
        return {rect.x(), rect.y(), rect.width(), rect.height()};
    }
    [[nodiscard]] QRect toQRect() const { return {x, y, width, height}; }

    friend bool operator==(const ToolkitRect&, const ToolkitRect&) = default;
};

/// The only way between AppKit screen space and toolkit space, on one of the toolkit's screens: the
/// toolkit scales each about the screen's top-left corner.
class ToolkitSpace {
public:
    /// Counts like AppKit screen space on no screen of the toolkit's.
    ToolkitSpace() = default;
    /// `corner` is the top-left corner of the toolkit's screen, `scale` how many points of AppKit
    /// screen space one point of the toolkit is long.
    ToolkitSpace(QScreen* screen, AppKitPoint corner, ToolkitPoint toolkitCorner, double scale)
        : screen_(screen)
        , corner_(corner)
        , toolkitCorner_(toolkitCorner)
        , scale_(scale) {}

    /// The toolkit's screen, for as long as its screens stay as they are; null without one.
    [[nodiscard]] QScreen* screen() const { return screen_; }

    /// The nearest rectangle, its edges rounded; for an empty one, the point that holds it.
    [[nodiscard]] ToolkitRect toToolkit(const AppKitRect& rect) const;
    /// The largest rectangle inside.
    [[nodiscard]] ToolkitRect insideToolkit(const AppKitRect& rect) const;
    [[nodiscard]] AppKitRect toAppKit(const ToolkitRect& rect) const;

private:
    using Rounding = double (*)(double);
    [[nodiscard]] ToolkitRect rounded(const AppKitRect& rect, Rounding low, Rounding high) const;

    QScreen* screen_ = nullptr;
    AppKitPoint corner_;
    ToolkitPoint toolkitCorner_;
    double scale_ = 1;
};

} // namespace tilewright
