#pragma once

#include <WindowManager/ZoneLayout.h>

#include <QImage>
#include <cmath>
#include <set>

namespace tilewright::testing {

/// How the overlay's first zone looks at its left and its right edge, pixel by pixel, while it is
/// highlighted on a display that begins where the picture does.
class OverlayEdges {
public:
    /// `scale` is how many pixels lie along a point.
    OverlayEdges(const QImage& picture, double scale) {
        constexpr double margin = 4;
        const double end = ZoneLayout::bentoBox().zones[0].width * picture.width();
        const auto pixel = [](double edge) { return int(std::floor(edge + 0.5)); };
        const int left = pixel(margin * scale);
        const int right = pixel(end - margin * scale);
        const int row = picture.height() - pixel(60 * scale);
        const auto look = [&](int column) { return picture.pixelColor(column, row).name(); };
        for (int column = 0; column < left; ++column)
            beside_.insert(look(column));
        for (int column = right; column < pixel(end + margin * scale); ++column)
            beside_.insert(look(column));
        for (int column = 0; column < int(3 * scale); ++column) {
            onBorder_.insert(look(left + column));
            onBorder_.insert(look(right - 1 - column));
        }
    }

    /// Whether every pixel is wholly of the border, or wholly beside it, on a ground of this
    /// colour.
    [[nodiscard]] bool areCrispOn(const QColor& ground) const {
        return onBorder_ == std::set<QString>{QStringLiteral("#d18c33")} &&
               beside_ == std::set<QString>{ground.name()};
    }

private:
    std::set<QString> beside_;
    std::set<QString> onBorder_;
};

} // namespace tilewright::testing
