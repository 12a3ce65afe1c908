#include "RoundedPanelChrome.h"

#include <TilewrightUI/Look.h>

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <qdrawutil.h>

namespace tilewright {

namespace {

constexpr int shadowReach = 22;
constexpr int shadowDrop = 6;
constexpr double shadowOpacity = 0.30;
/// How much of the stretchable shadow a corner takes up.
constexpr int shadowCorner =
    2 * shadowReach + shadowDrop + static_cast<int>(look::panelCornerRadius);

/// How far the point is outside a rounded rectangle; negative inside.
double distanceOutside(QPointF point, const QRectF& rect, double radius) {
    const QPointF toCenter = point - rect.center();
    const double dx = std::abs(toCenter.x()) - rect.width() / 2 + radius;
    const double dy = std::abs(toCenter.y()) - rect.height() / 2 + radius;
    const double corner = std::hypot(std::max(dx, 0.0), std::max(dy, 0.0));
    return corner + std::min(std::max(dx, dy), 0.0) - radius;
}

QPixmap makeShadow(double devicePixelRatio) {
    const int side = 2 * shadowCorner + 1;
    const int pixels = static_cast<int>(std::ceil(side * devicePixelRatio));
    const QRectF caster = QRectF(0, 0, side, side)
                              .adjusted(shadowReach, shadowReach + shadowDrop, -shadowReach,
                                        -shadowReach + shadowDrop);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < pixels; ++y) {
        for (int x = 0; x < pixels; ++x) {
            const QPointF point(QPointF(x + 0.5, y + 0.5) / devicePixelRatio);
            const double outside = distanceOutside(point, caster, look::panelCornerRadius);
            const double nearness =
                std::clamp(0.5 - outside / (2.0 * (shadowReach - shadowDrop)), 0.0, 1.0);
            const double smooth = nearness * nearness * (3 - 2 * nearness);
            image.setPixel(x, y, qRgba(0, 0, 0, qRound(255 * shadowOpacity * smooth)));
        }
    }
    image.setDevicePixelRatio(devicePixelRatio);
    return QPixmap::fromImage(image);
}

} // namespace

QMargins RoundedPanelChrome::margins(PanelRendering rendering) const {
    if (rendering == PanelRendering::opaque)
        return {};
    return {shadowReach, shadowReach, shadowReach, shadowReach};
}

void RoundedPanelChrome::paint(QPainter& painter, const QRect& surface, const QPalette& palette,
                               PanelRendering rendering) {
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ground = surface.marginsRemoved(margins(rendering));
    if (rendering == PanelRendering::opaque) {
        painter.fillRect(ground, look::panelFill(palette));
        look::strokeInside(painter, ground, 0, look::separator(palette), 1);
        return;
    }
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(surface, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    paintShadow(painter, surface);
    painter.fillPath(look::continuousRoundedRect(ground, look::panelCornerRadius),
                     look::panelFill(palette));
    look::strokeInside(painter, ground, look::panelCornerRadius, look::separator(palette), 1);
}

void RoundedPanelChrome::paintShadow(QPainter& painter, const QRect& surface) {
    const double ratio = painter.device()->devicePixelRatioF();
    if (shadow_.isNull() || shadow_.devicePixelRatio() != ratio)
        shadow_ = makeShadow(ratio);
    // The helper counts the pixmap's margins in its pixels.
    const int corner = static_cast<int>(std::ceil(shadowCorner * ratio));
    const QMargins target(shadowCorner, shadowCorner, shadowCorner, shadowCorner);
    const QMargins source(corner, corner, corner, corner);
    qDrawBorderPixmap(&painter, surface, target, shadow_, QRect(QPoint(), shadow_.size()), source);
}

} // namespace tilewright
