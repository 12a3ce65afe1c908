#include "MiniLayoutPreview.h"

#include "Look.h"

#include <QPainter>
#include <QPainterPath>

namespace tilewright {

MiniLayoutPreview::MiniLayoutPreview(ZoneLayout layout, QWidget* parent)
    : QWidget(parent)
    , layout_(std::move(layout)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void MiniLayoutPreview::setZoneLayout(const ZoneLayout& layout) {
    layout_ = layout;
    update();
}

void MiniLayoutPreview::setHighlightedZoneID(const std::optional<QUuid>& id) {
    highlightedZoneID_ = id;
    update();
}

void MiniLayoutPreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double width = this->width();
    const double height = this->height();
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::quaternary(palette()));
    painter.drawRoundedRect(QRectF(0, 0, width, height), 4, 4);
    for (const Zone& zone : layout_.zones) {
        const QRectF scaled(zone.x * width, zone.y * height, zone.width * width,
                            zone.height * height);
        const QRectF inset = scaled.adjusted(1, 1, -1, -1);
        // A zone thinner than its own margin has no inside to draw.
        if (!inset.isValid())
            continue;
        QPainterPath path;
        path.addRoundedRect(inset, 2, 2);
        painter.fillPath(path, look::tilewrightAmber(zone.id == highlightedZoneID_ ? 0.5 : 0.25));
        painter.strokePath(path, QPen(look::tilewrightAmber(0.75), 1));
    }
}

} // namespace tilewright
