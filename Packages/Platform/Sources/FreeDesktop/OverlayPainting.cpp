#include "OverlayPainting.h"

#include <cmath>

namespace tilewright::overlay {

QSize pixelsOf(QSize points, double scale) {
    return {static_cast<int>(std::lround(points.width() * scale)),
            static_cast<int>(std::lround(points.height() * scale))};
}

QRegion pixelsOf(const QRegion& region, double scale, const QRect& picture) {
    QRegion touched;
    for (const QRect& rect : region)
        touched +=
            QRectF(rect.x() * scale, rect.y() * scale, rect.width() * scale, rect.height() * scale)
                .toAlignedRect();
    return touched & picture;
}

void paint(QWidget& view, const QRegion& region, double scale, QImage picture) {
    picture.setDevicePixelRatio(scale);
    view.render(&picture, region.boundingRect().topLeft(), region, QWidget::RenderFlags());
}

} // namespace tilewright::overlay
