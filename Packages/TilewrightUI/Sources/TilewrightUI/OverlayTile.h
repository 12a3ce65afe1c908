#pragma once

#include "HighlightFade.h"

#include <Platform/OverlayPicture.h>
#include <WindowManager/Zone.h>

#include <QRect>
#include <QRectF>
#include <QRegion>
#include <QSizeF>
#include <QUuid>
#include <optional>

class QPainter;

namespace tilewright {

/// One zone as the overlay draws it: a rounded rectangle with a border inside its edge, and within
/// that a light and a dark line, so that it is seen on whatever lies beneath. Lengths and places
/// are in the overlay's own coordinates, in points.
class OverlayTile {
public:
    /// Whether a tile is the only one in its place.
    enum class Place { alone, shared };

    /// The tile of a zone in an overlay of this size.
    OverlayTile(const Zone& zone, const QSizeF& overlay);

    [[nodiscard]] const QUuid& zoneID() const { return zoneID_; }
    /// The outer edge: the zone's share of the overlay less 4 points on each side, never of a
    /// negative size. Empty where the zone is no larger than that, or has a number that is none.
    [[nodiscard]] const QRectF& frame() const { return frame_; }
    /// Holds every pixel that the tile may touch.
    [[nodiscard]] QRect area() const;

    /// How far the tile is highlighted.
    HighlightFade fade;
    /// `alone` while no other tile's area touches this one's.
    Place place = Place::alone;

    /// The tile as plain values, its fade ended; none where it cannot be seen.
    [[nodiscard]] std::optional<OverlayPictureTile> values() const;

    /// Draws the tile translucently. Alone in its place it replaces whatever was there, else it
    /// covers that.
    void paint(QPainter& painter) const;
    /// The part of the painter's device, in its pixels, that `paint` replaces wholly.
    [[nodiscard]] QRect replacedPixels(double pixelsPerPoint) const;

    /// Draws the border and the dark line alone, opaque, somewhat beyond their outer and inner
    /// edge: the caller cuts to `outline()`, and no rounding of that may show what lies between.
    void paintOpaque(QPainter& painter) const;
    /// What the border and the dark line cover when they are drawn without transparency.
    [[nodiscard]] QRegion outline() const;
    /// What lies within the tile's outer edge.
    [[nodiscard]] QRegion shape() const;
    /// The border's width in whole points.
    [[nodiscard]] int opaqueBorderWidth() const;

private:
    QUuid zoneID_;
    QRectF frame_;
};

} // namespace tilewright
