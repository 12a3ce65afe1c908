#include "OverlayTile.h"

#include "Look.h"

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>

namespace tilewright {

namespace {

constexpr double margin = 4;
constexpr double plainBorderWidth = 1;
constexpr double highlightedBorderWidth = 3;
constexpr double plainOpacity = 0.5;

double mix(double plain, double highlighted, double highlight) {
    return plain + ((highlighted - plain) * highlight);
}

/// A colour with its opacity multiplied in, the form in which colours can be mixed and stacked.
struct Tone {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    Tone() = default;
    Tone(double r, double g, double b, double a)
        : red(r * a)
        , green(g * a)
        , blue(b * a)
        , alpha(a) {}
    explicit Tone(const QColor& color)
        : Tone(color.redF(), color.greenF(), color.blueF(), color.alphaF()) {}

    template<class Operation>
    [[nodiscard]] static Tone combined(const Tone& a, const Tone& b, Operation operation) {
        Tone result;
        result.red = operation(a.red, b.red);
        result.green = operation(a.green, b.green);
        result.blue = operation(a.blue, b.blue);
        result.alpha = operation(a.alpha, b.alpha);
        return result;
    }
    [[nodiscard]] Tone over(const Tone& beneath) const {
        return combined(*this, beneath,
                        [this](double top, double low) { return top + (low * (1 - alpha)); });
    }
    [[nodiscard]] QColor color(double opacity) const {
        if (alpha <= 0)
            return Qt::transparent;
        const auto channel = [this](double value) {
            return static_cast<float>(std::clamp(value / alpha, 0.0, 1.0));
        };
        return QColor::fromRgbF(channel(red), channel(green), channel(blue),
                                static_cast<float>(std::clamp(alpha * opacity, 0.0, 1.0)));
    }
};

Tone mix(const Tone& plain, const Tone& highlighted, double highlight) {
    return Tone::combined(plain, highlighted,
                          [highlight](double a, double b) { return mix(a, b, highlight); });
}

/// Stands in for the untinted glass: a grey darkens what is light and lightens what is dark.
constexpr double neutralGrey = 0.5;
const Tone neutralGlass(neutralGrey, neutralGrey, neutralGrey, 0.30);
const Tone plainBorder(1, 1, 1, 0.4);

Tone fillTone(double highlight) {
    return mix(neutralGlass, Tone(look::tilewrightAmber(0.28)), highlight);
}

Tone borderTone(double highlight) {
    return mix(plainBorder, Tone(look::tilewrightAmber()), highlight);
}

double borderWidth(double highlight) {
    return mix(plainBorderWidth, highlightedBorderWidth, highlight);
}

/// Like Qt's own rounding, save that halves below zero go the same way as those above:
/// edges that lie a whole number apart stay so.
double roundedEdge(double edge) {
    return std::floor(edge + 0.5);
}

/// The rectangle in units of 1/scale, with its edges, not its size, rounded.
QRectF onPixels(const QRectF& rect, double scale) {
    const QPointF topLeft(roundedEdge(rect.left() * scale), roundedEdge(rect.top() * scale));
    const QPointF bottomRight(roundedEdge(rect.right() * scale),
                              roundedEdge(rect.bottom() * scale));
    return {topLeft, bottomRight};
}

OverlayColor valuesOf(const Tone& tone) {
    const QColor color = tone.color(1);
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

double opacityOf(double highlight) {
    return mix(plainOpacity, 1, highlight);
}

double radiusFor(const QRectF& rect, double radius) {
    return std::max(0.0, std::min({radius, rect.width() / 2, rect.height() / 2}));
}

/// A tile in the pixels of the device it is drawn on.
struct PixelTile {
    QRectF outer;
    double radius;
    double border;
    QRectF inner;
    /// Free of the border and of the corners' curves.
    QRect core;

    PixelTile(const QRectF& frame, double highlight, double scale)
        : outer(onPixels(frame, scale))
        , radius(radiusFor(outer, look::overlayCornerRadius * scale))
        , border(borderWidth(highlight) * scale)
        , inner(outer.adjusted(border, border, -border, -border)) {
        const int inset = static_cast<int>(std::ceil(look::overlayCornerRadius * scale));
        core = outer.toRect().adjusted(inset, inset, -inset, -inset);
        if (core.isEmpty())
            core = {};
    }

    [[nodiscard]] QPainterPath outerPath() const {
        QPainterPath path;
        path.setFillRule(Qt::OddEvenFill);
        path.addRoundedRect(outer, radius, radius);
        return path;
    }
    void addInner(QPainterPath& path) const {
        if (inner.isEmpty())
            return;
        const double innerRadius = std::max(0.0, radius - border);
        path.addRoundedRect(inner, innerRadius, innerRadius);
    }
    void addCore(QPainterPath& path) const {
        if (!core.isEmpty())
            path.addRect(core);
    }
};

/// The painter's device pixels for one point.
double scaleOf(const QPainter& painter) {
    return painter.deviceTransform().m11();
}

/// The points within a rounded rectangle whose edges are whole numbers, row by row.
QRegion roundedRegion(const QRect& rect, double radius) {
    if (rect.isEmpty())
        return {};
    const double r = radiusFor(rect, radius);
    const int curved = std::min(static_cast<int>(std::ceil(r)), rect.height() / 2);
    QList<QRect> rows;
    rows.reserve((curved * 2) + 1);
    const auto addRow = [&](int y, int height, int inset) {
        const QRect row(rect.left() + inset, y, rect.width() - (2 * inset), height);
        if (!row.isEmpty())
            rows.append(row);
    };
    const auto insetOfRow = [&](int row) {
        const double rise = std::max(0.0, r - (row + 0.5));
        return static_cast<int>(std::lround(r - std::sqrt((r * r) - (rise * rise))));
    };
    for (int row = 0; row < curved; ++row)
        addRow(rect.top() + row, 1, insetOfRow(row));
    addRow(rect.top() + curved, rect.height() - (2 * curved), 0);
    for (int row = curved - 1; row >= 0; --row)
        addRow(rect.bottom() - row, 1, insetOfRow(row));
    QRegion region;
    region.setRects(rows.constData(), static_cast<int>(rows.size()));
    return region;
}

} // namespace

OverlayTile::OverlayTile(const Zone& zone, const QSizeF& overlay)
    : zoneID_(zone.id) {
    const double left = (zone.x * overlay.width()) + margin;
    const double top = (zone.y * overlay.height()) + margin;
    const double width = std::max(0.0, (zone.width * overlay.width()) - (2 * margin));
    const double height = std::max(0.0, (zone.height * overlay.height()) - (2 * margin));
    for (const double value : {left, top, left + width, top + height}) {
        if (!std::isfinite(value))
            return;
    }
    // Whatever lies further outside cannot be seen, and numbers that large cannot be drawn.
    const double reach = 4 * look::overlayCornerRadius;
    const QRectF seen(-reach, -reach, overlay.width() + (2 * reach),
                      overlay.height() + (2 * reach));
    frame_ = QRectF(left, top, width, height).intersected(seen);
}

QRect OverlayTile::area() const {
    if (frame_.isEmpty())
        return {};
    // Rounding to the device's pixels moves an edge by up to half a pixel.
    return frame_.toAlignedRect().adjusted(-1, -1, 1, 1);
}

std::optional<OverlayPictureTile> OverlayTile::values() const {
    if (frame_.isEmpty())
        return std::nullopt;
    const double highlight = fade.isHighlighted() ? 1 : 0;
    return OverlayPictureTile{.id = zoneID_,
                              .x = frame_.x(),
                              .y = frame_.y(),
                              .width = frame_.width(),
                              .height = frame_.height(),
                              .cornerRadius = radiusFor(frame_, look::overlayCornerRadius),
                              .fill = valuesOf(fillTone(highlight)),
                              .border = valuesOf(borderTone(highlight)),
                              .borderWidth = borderWidth(highlight),
                              .opacity = opacityOf(highlight),
                              .isHighlighted = fade.isHighlighted()};
}

void OverlayTile::paint(QPainter& painter) const {
    if (frame_.isEmpty())
        return;
    const double scale = scaleOf(painter);
    const double highlight = fade.value();
    const double opacity = opacityOf(highlight);
    const Tone fill = fillTone(highlight);
    const QColor fillColor = fill.color(opacity);
    const QColor borderColor = borderTone(highlight).over(fill).color(opacity);
    const PixelTile tile(frame_, highlight, scale);

    painter.save();
    painter.scale(1 / scale, 1 / scale);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath edge = tile.outerPath();
    QPainterPath inside;
    inside.setFillRule(Qt::OddEvenFill);
    tile.addInner(inside);
    if (place == Place::alone) {
        // Replacing blends along an edge exactly, so the fill can be laid into the border.
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        tile.addCore(edge);
    } else {
        tile.addInner(edge);
    }
    tile.addCore(inside);
    painter.fillPath(edge, borderColor);
    painter.fillPath(inside, fillColor);
    if (!tile.core.isEmpty())
        painter.fillRect(tile.core, fillColor);
    painter.restore();
}

QRect OverlayTile::replacedPixels(double pixelsPerPoint) const {
    if (place != Place::alone || frame_.isEmpty())
        return {};
    return PixelTile(frame_, fade.value(), pixelsPerPoint).core;
}

void OverlayTile::paintOpaque(QPainter& painter) const {
    if (frame_.isEmpty())
        return;
    constexpr double beyond = 1.5;
    const double inward = opaqueBorderWidth() + beyond;
    const QRectF outer = frame_.adjusted(-beyond, -beyond, beyond, beyond);
    const QRectF inner = frame_.adjusted(inward, inward, -inward, -inward);
    const double radius = radiusFor(frame_, look::overlayCornerRadius);
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    path.addRoundedRect(outer, radius + beyond, radius + beyond);
    if (!inner.isEmpty())
        path.addRoundedRect(inner, std::max(0.0, radius - inward), std::max(0.0, radius - inward));
    // The tile's own tones with the transparency taken out: a light grey that is seen over white as
    // well as over black, and the accent itself.
    const Tone plain = plainBorder.over(Tone(neutralGrey, neutralGrey, neutralGrey, 1));
    const Tone tone = mix(plain, Tone(look::tilewrightAmber()), fade.value());
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillPath(path, tone.color(1));
}

int OverlayTile::opaqueBorderWidth() const {
    return static_cast<int>(std::lround(borderWidth(fade.value())));
}

QRegion OverlayTile::shape() const {
    return roundedRegion(onPixels(frame_, 1).toRect(), look::overlayCornerRadius);
}

QRegion OverlayTile::border() const {
    const QRect outer = onPixels(frame_, 1).toRect();
    const int width = opaqueBorderWidth();
    const QRect inner = outer.adjusted(width, width, -width, -width);
    const double radius = radiusFor(outer, look::overlayCornerRadius) - width;
    return shape().subtracted(roundedRegion(inner, std::max(0.0, radius)));
}

} // namespace tilewright
