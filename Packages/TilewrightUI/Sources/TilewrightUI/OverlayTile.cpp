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
/// Of each of the two lines beside the border.
constexpr double lineWidth = 1;

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

// No single colour stands out from every ground, and glass that is not blurred is lost on
// mid-tones. A light line and a dark one stand out from each other wherever they lie. The accent is
// light enough to need the dark one only.
Tone lightTone(double highlight) {
    return mix(Tone(1, 1, 1, 0.75), Tone(), highlight);
}

Tone darkTone(double highlight) {
    return mix(Tone(0, 0, 0, 0.9), Tone(0, 0, 0, 0.6), highlight);
}

double lightWidth(double highlight) {
    return mix(lineWidth, 0, highlight);
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
    /// How far from the outer edge the border, the light line and the dark one end, in that order.
    std::array<double, 3> ends;
    /// Free of the border, the lines and the corners' curves.
    QRect core;

    PixelTile(const QRectF& frame, double highlight, double scale)
        : outer(onPixels(frame, scale))
        , radius(radiusFor(outer, look::overlayCornerRadius * scale)) {
        // The border has its exact width. The lines end between pixels, so that they are crisp.
        const double line = std::max(1.0, roundedEdge(lineWidth * scale));
        const double plainLight = roundedEdge((plainBorderWidth + lineWidth) * scale);
        const double highlightedBorder = highlightedBorderWidth * scale;
        ends = {borderWidth(highlight) * scale, mix(plainLight, highlightedBorder, highlight),
                mix(plainLight + line, roundedEdge(highlightedBorder) + line, highlight)};
        const int inset = static_cast<int>(std::ceil(look::overlayCornerRadius * scale));
        core = outer.toRect().adjusted(inset, inset, -inset, -inset);
        if (core.isEmpty())
            core = {};
    }

    /// Adds the outline of what is left within a distance from the outer edge.
    void addWithin(QPainterPath& path, double distance) const {
        const QRectF rect = outer.adjusted(distance, distance, -distance, -distance);
        if (rect.isEmpty())
            return;
        const double inner = std::max(0.0, radius - distance);
        path.addRoundedRect(rect, inner, inner);
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
                              .light = {lightWidth(highlight), valuesOf(lightTone(highlight))},
                              .dark = {lineWidth, valuesOf(darkTone(highlight))},
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
    const PixelTile tile(frame_, highlight, scale);
    struct Band {
        double start;
        QColor color;
    };
    const auto onFill = [&](const Tone& tone) { return tone.over(fill).color(opacity); };
    const std::array bands{
        Band{0, onFill(borderTone(highlight))}, Band{tile.ends[0], onFill(lightTone(highlight))},
        Band{tile.ends[1], onFill(darkTone(highlight))}, Band{tile.ends[2], fill.color(opacity)}};

    painter.save();
    painter.scale(1 / scale, 1 / scale);
    painter.setRenderHint(QPainter::Antialiasing);
    // Replacing blends along an edge exactly, so each band can be laid into the one around it.
    const bool replaces = place == Place::alone;
    if (replaces)
        painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (std::size_t index = 0; index < bands.size(); ++index) {
        const bool isLast = index + 1 == bands.size();
        if (!isLast && bands[index + 1].start <= bands[index].start)
            continue;
        QPainterPath path;
        path.setFillRule(Qt::OddEvenFill);
        tile.addWithin(path, bands[index].start);
        if (replaces || isLast)
            tile.addCore(path);
        else
            tile.addWithin(path, bands[index + 1].start);
        painter.fillPath(path, bands[index].color);
    }
    if (!tile.core.isEmpty())
        painter.fillRect(tile.core, bands.back().color);
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
    const double radius = radiusFor(frame_, look::overlayCornerRadius);
    const auto fillBand = [&](double start, double end, const Tone& tone) {
        QPainterPath path;
        path.setFillRule(Qt::OddEvenFill);
        for (const double inset : {start, end}) {
            const QRectF edge = frame_.adjusted(inset, inset, -inset, -inset);
            const double corner = std::max(0.0, radius - inset);
            if (!edge.isEmpty())
                path.addRoundedRect(edge, corner, corner);
        }
        painter.fillPath(path, tone.color(1));
    };
    // The tile's own tones with the transparency taken out: a light grey, or the accent itself,
    // beside which the dark line is enough.
    const Tone glass(neutralGrey, neutralGrey, neutralGrey, 1);
    const Tone border = mix(plainBorder.over(glass), Tone(look::tilewrightAmber()), fade.value());
    painter.setRenderHint(QPainter::Antialiasing, false);
    fillBand(-beyond, opaqueBorderWidth(), border);
    fillBand(opaqueBorderWidth(), opaqueBorderWidth() + lineWidth + beyond,
             darkTone(0).over(glass));
}

int OverlayTile::opaqueBorderWidth() const {
    return static_cast<int>(std::lround(borderWidth(fade.value())));
}

QRegion OverlayTile::shape() const {
    return roundedRegion(onPixels(frame_, 1).toRect(), look::overlayCornerRadius);
}

QRegion OverlayTile::outline() const {
    const QRect outer = onPixels(frame_, 1).toRect();
    const int width = opaqueBorderWidth() + static_cast<int>(lineWidth);
    const QRect inner = outer.adjusted(width, width, -width, -width);
    const double radius = radiusFor(outer, look::overlayCornerRadius) - width;
    return shape().subtracted(roundedRegion(inner, std::max(0.0, radius)));
}

} // namespace tilewright
