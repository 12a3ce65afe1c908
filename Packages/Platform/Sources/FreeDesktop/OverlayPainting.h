#pragma once

#include <QImage>
#include <QRegion>
#include <QSize>
#include <QWidget>

/// Painting an overlay's view, whose widget stays hidden, into pixels of one's own.
namespace tilewright::overlay {

/// The size in pixels of so many points, where a point is so many pixels long.
[[nodiscard]] QSize pixelsOf(QSize points, double scale);
/// The pixels of a picture that a region of the view, in points, touches.
[[nodiscard]] QRegion pixelsOf(const QRegion& region, double scale, const QRect& picture);
/// Paints a region of the view, in points, at its place in the picture of the whole.
void paint(QWidget& view, const QRegion& region, double scale, QImage picture);

} // namespace tilewright::overlay
