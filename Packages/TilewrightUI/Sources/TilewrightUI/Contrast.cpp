#include "Contrast.h"

#include <algorithm>
#include <cmath>

namespace tilewright::look {

namespace {

/// What 8-bit channels and blending may take away again.
constexpr double roundingRoom = 0.1;
constexpr int steps = 64;

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

/// From 0, black, to 1, white.
double luminance(const QColor& color) {
    const auto channel = [](float value) { return linear(static_cast<double>(value)); };
    return (0.2126 * channel(color.redF())) + (0.7152 * channel(color.greenF())) +
           (0.0722 * channel(color.blueF()));
}

double leastContrast(const QColor& color, std::initializer_list<QColor> grounds) {
    double least = 21;
    for (const QColor& ground : grounds)
        least = std::min(least, contrast(color, ground));
    return least;
}

QColor mixed(const QColor& from, const QColor& to, double share) {
    const auto channel = [share](float a, float b) {
        return static_cast<float>(static_cast<double>(a) + (static_cast<double>(b - a) * share));
    };
    return QColor::fromRgbF(channel(from.redF(), to.redF()), channel(from.greenF(), to.greenF()),
                            channel(from.blueF(), to.blueF()), channel(from.alphaF(), to.alphaF()));
}

} // namespace

QColor over(const QColor& top, const QColor& ground) {
    const QColor opaque = QColor::fromRgbF(top.redF(), top.greenF(), top.blueF());
    return mixed(ground, opaque, static_cast<double>(top.alphaF()));
}

double contrast(const QColor& color, const QColor& ground) {
    const double a = luminance(over(color, ground));
    const double b = luminance(ground);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor legible(const QColor& color, std::initializer_list<QColor> grounds) {
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    const QColor& end =
        leastContrast(black, grounds) > leastContrast(white, grounds) ? black : white;
    for (int step = 0; step < steps; ++step) {
        const QColor candidate = mixed(color, end, static_cast<double>(step) / steps);
        if (leastContrast(candidate, grounds) >= textContrast + roundingRoom)
            return candidate;
    }
    return end;
}

} // namespace tilewright::look
