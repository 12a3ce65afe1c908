#include "LayoutThumbnail.h"

#include "FocusVisibility.h"
#include "Look.h"

#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QStyle>
#include <algorithm>
#include <cmath>

namespace tilewright {

namespace {

constexpr double cornerRadius = 5;
constexpr double zoneCornerRadius = 3;

/// One zone as a control: the thumbnail draws the zone, the button what the user does to it.
class ZoneButton final : public QPushButton {
public:
    explicit ZoneButton(QWidget* parent)
        : QPushButton(parent) {
        // Only such buttons answer to Enter as well.
        setAutoDefault(true);
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (isEnabled() && (underMouse() || isDown())) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(look::tilewrightAmber(isDown() ? 0.34 : 0.16));
            painter.drawRoundedRect(QRectF(rect()), zoneCornerRadius, zoneCornerRadius);
        }
        if (look::showsFocus(*this))
            look::paintFocusRing(painter, QRectF(rect()), zoneCornerRadius, palette());
    }
};

} // namespace

LayoutThumbnail::LayoutThumbnail(ZoneLayout layout, SelectZone onSelectZone, QWidget* parent)
    : QWidget(parent)
    , layout_(std::move(layout))
    , onSelectZone_(std::move(onSelectZone)) {
    makeButtons();
}

void LayoutThumbnail::setZoneLayout(const ZoneLayout& layout) {
    if (layout == layout_)
        return;
    layout_ = layout;
    makeButtons();
    update();
}

int LayoutThumbnail::heightForWidth(int width) const {
    return static_cast<int>(std::lround(width / aspectRatio));
}

QRectF LayoutThumbnail::canvas() const {
    const double width = std::min(static_cast<double>(this->width()), height() * aspectRatio);
    const double left = layoutDirection() == Qt::RightToLeft ? this->width() - width : 0;
    return {left, 0, width, width / aspectRatio};
}

QRectF LayoutThumbnail::frame(const Zone& zone) const {
    const QRectF area = canvas();
    return {area.x() + (zone.x * area.width()), area.y() + (zone.y * area.height()),
            zone.width * area.width(), zone.height * area.height()};
}

void LayoutThumbnail::makeButtons() {
    qDeleteAll(buttons_);
    buttons_.clear();
    // Without an action the zones are a picture.
    if (!onSelectZone_)
        return;
    for (const Zone& zone : layout_.zones) {
        auto* button = new ZoneButton(this);
        button->setAccessibleName(
            tr("Snap to %1").arg(zone.name.isEmpty() ? tr("unnamed zone") : zone.name));
        connect(button, &QAbstractButton::clicked, this, [this, zone] { onSelectZone_(zone); });
        buttons_.push_back(button);
        button->setVisible(true);
    }
    placeButtons();
}

void LayoutThumbnail::placeButtons() {
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        const QRectF exact = frame(layout_.zones[i]).intersected(QRectF(rect()));
        // Edges are rounded, not sizes: neighbours share theirs.
        const QPoint topLeft(qRound(exact.left()), qRound(exact.top()));
        const QPoint bottomRight(qRound(exact.right()) - 1, qRound(exact.bottom()) - 1);
        buttons_[i]->setGeometry(QRect(topLeft, bottomRight));
    }
}

void LayoutThumbnail::resizeEvent(QResizeEvent*) {
    placeButtons();
}

void LayoutThumbnail::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(look::continuousRoundedRect(canvas(), cornerRadius),
                     look::quaternary(palette()));
    for (const Zone& zone : layout_.zones) {
        const QRectF shape = frame(zone);
        if (!shape.isValid())
            continue;
        painter.setPen(Qt::NoPen);
        painter.setBrush(look::tilewrightAmber(0.22));
        painter.drawRoundedRect(shape, zoneCornerRadius, zoneCornerRadius);
        look::strokeInside(painter, shape, zoneCornerRadius, look::tilewrightAmber(0.7), 1);
    }
}

} // namespace tilewright
