#include "ZoneEditorHandle.h"

#include "FocusVisibility.h"
#include "Look.h"
#include "Symbols.h"
#include "ZoneEditorTile.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tilewright {

using namespace Qt::StringLiterals;

namespace {

constexpr double symbolSide = 9;
/// Room around the circle for its shadow.
constexpr int shadowRoom = 2;
/// How much of the zone stays free between two handles, so that its body can be dragged.
constexpr double bodyRoom = 12;
constexpr double leastHitSide = 24;

bool isLeft(ZoneEditorGeometry::Corner corner) {
    using Corner = ZoneEditorGeometry::Corner;
    return corner == Corner::topLeft || corner == Corner::bottomLeft;
}

bool isTop(ZoneEditorGeometry::Corner corner) {
    using Corner = ZoneEditorGeometry::Corner;
    return corner == Corner::topLeft || corner == Corner::topRight;
}

/// How far inside its zone a handle begins, along one axis: at the edge, or outside it where the
/// zone is too small to hold two handles and some body between them.
double inset(double size) {
    return std::clamp((size - bodyRoom) / 2 - ZoneEditorHandle::diameter,
                      -ZoneEditorHandle::diameter, 0.0);
}

/// The middle of what stays free of the zone, from left to right: its own, or beside it where the
/// bounds are so near that there would be too little room for the handles at that side.
double freeMiddle(const QRectF& zone, const QRectF& bounds) {
    const double room = leastHitSide + (bodyRoom / 2);
    const double middle =
        std::max(std::min(zone.center().x(), bounds.right() - room), bounds.left() + room);
    const double half = std::min(bodyRoom, zone.width()) / 2;
    return std::min(std::max(middle, zone.left() + half), zone.right() - half);
}

/// The circle's surroundings, outward from the zone as far as the bounds go, else inward. Beside
/// the body, which stays free, it may be as far down or up as it has to.
QRectF hitAreaOf(const QRectF& circle, const QRectF& zone, const QRectF& bounds,
                 ZoneEditorGeometry::Corner corner) {
    QRectF area(0, 0, leastHitSide, leastHitSide);
    area.moveLeft(isLeft(corner) ? circle.right() - leastHitSide : circle.left());
    area.moveTop(isTop(corner) ? circle.bottom() - leastHitSide : circle.top());
    area.moveLeft(std::max(std::min(area.left(), bounds.right() - leastHitSide), bounds.left()));
    area.moveTop(std::max(std::min(area.top(), bounds.bottom() - leastHitSide), bounds.top()));
    const double middle = freeMiddle(zone, bounds);
    if (isLeft(corner))
        area.setRight(std::min(area.right(), middle - (bodyRoom / 2)));
    else
        area.setLeft(std::max(area.left(), middle + (bodyRoom / 2)));
    return area;
}

QString symbolOf(ZoneEditorGeometry::Corner corner) {
    const QString vertical = isTop(corner) ? u"arrow.up"_s : u"arrow.down"_s;
    return vertical + (isLeft(corner) ? u".left"_s : u".right"_s);
}

} // namespace

ZoneEditorHandle::ZoneEditorHandle(LayoutEditorModel& model, Corner corner, QWidget* canvas)
    : QWidget(canvas)
    , model_(model)
    , corner_(corner) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    switch (corner) {
    case Corner::topLeft:
        setAccessibleName(tr("Top left corner"));
        break;
    case Corner::topRight:
        setAccessibleName(tr("Top right corner"));
        break;
    case Corner::bottomLeft:
        setAccessibleName(tr("Bottom left corner"));
        break;
    case Corner::bottomRight:
        setAccessibleName(tr("Bottom right corner"));
        break;
    }
    hide();
}

void ZoneEditorHandle::attach(std::size_t index, const QRectF& zoneFrame, const QRectF& bounds) {
    index_ = index;
    const double middle = freeMiddle(zoneFrame, bounds);
    const double x = isLeft(corner_)
                         ? std::min(zoneFrame.left() + inset(zoneFrame.width()),
                                    middle - (bodyRoom / 2) - diameter)
                         : std::max(zoneFrame.right() - inset(zoneFrame.width()) - diameter,
                                    middle + (bodyRoom / 2));
    const double y = isTop(corner_) ? zoneFrame.top() + inset(zoneFrame.height())
                                    : zoneFrame.bottom() - inset(zoneFrame.height()) - diameter;
    const QRectF circle(std::max(std::min(x, bounds.right() - diameter), bounds.left()),
                        std::max(std::min(y, bounds.bottom() - diameter), bounds.top()), diameter,
                        diameter);
    hitArea_ = hitAreaOf(circle, zoneFrame, bounds, corner_);
    const QString description = ZoneEditorTile::accessibleNameOf(model_.zones().at(index), index);
    if (description != accessibleDescription())
        setAccessibleDescription(description);
    if (circle != circle_) {
        circle_ = circle;
        const int room = shadowRoom;
        setGeometry(circle.adjusted(-room, -room, room, room).toAlignedRect());
        update();
    }
    show();
}

bool ZoneEditorHandle::contains(QPointF point) const {
    const QPointF way = point - circle_.center();
    return isVisibleTo(parentWidget()) &&
           (std::hypot(way.x(), way.y()) <= diameter / 2 || hitArea_.contains(point));
}

Qt::CursorShape ZoneEditorHandle::cursorShape(Corner corner) {
    return isLeft(corner) == isTop(corner) ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

void ZoneEditorHandle::keyPressEvent(QKeyEvent* event) {
    if (const auto nudge = ZoneEditorTile::nudgeOf(*event)) {
        model_.nudgeCorner(index_, corner_, nudge->x(), nudge->y());
    } else if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
        model_.deleteSelected();
    } else {
        if (event->key() == Qt::Key_Escape)
            Q_EMIT cancelRequested();
        QWidget::keyPressEvent(event);
    }
}

void ZoneEditorHandle::focusInEvent(QFocusEvent*) {
    update();
}

void ZoneEditorHandle::focusOutEvent(QFocusEvent*) {
    update();
}

void ZoneEditorHandle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-pos());
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 36));
    painter.drawEllipse(circle_.translated(0, 1).adjusted(-0.5, -0.5, 0.5, 0.5));
    painter.setBrush(look::tilewrightAmber());
    painter.drawEllipse(circle_);
    QRectF symbol(0, 0, symbolSide, symbolSide);
    symbol.moveCenter(circle_.center());
    symbols::paint(painter, symbol, symbolOf(corner_), Qt::white);
    if (look::showsFocus(*this))
        look::paintFocusRingOnAmber(painter, circle_.adjusted(-0.5, -0.5, 0.5, 0.5), diameter / 2);
}

} // namespace tilewright
