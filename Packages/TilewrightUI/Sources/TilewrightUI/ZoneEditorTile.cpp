#include "ZoneEditorTile.h"

#include "Contrast.h"
#include "DigitText.h"
#include "FocusVisibility.h"
#include "Look.h"

#include <QAccessible>
#include <QEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace tilewright {

using namespace Qt::StringLiterals;

namespace {

constexpr double cornerRadius = 4;
constexpr double readoutSidePadding = 5;
constexpr double readoutVerticalPadding = 2;
/// In points, whatever the desktop's size of text.
constexpr int readoutSize = 10;
/// Beyond this many points a rectangle's edges are out of sight on any display, and Qt's
/// own coordinates end not far behind.
constexpr double farAway = 30'000;

QFont readoutFont() {
    QFont font = look::font(look::TextStyle::body);
    font.setPixelSize(readoutSize);
    return font;
}

QColor readoutFill(const QPalette& palette) {
    return look::isDark(palette) ? QColor(24, 24, 27, 150) : QColor(255, 255, 255, 165);
}

/// Zones may lie one over the other: what the readout stands on is anything between a single faint
/// one and the full accent, seen through its own fill.
QColor readoutText(const QPalette& palette) {
    const QColor canvas = look::over(look::quaternary(palette), look::panelFill(palette));
    const QColor fill = readoutFill(palette);
    return look::legible(look::secondary(palette),
                         {look::over(fill, look::over(look::tilewrightAmber(0.18), canvas)),
                          look::over(fill, look::tilewrightAmber())});
}

QRectF inReach(const QRectF& rect) {
    return rect.intersected(QRectF(-farAway, -farAway, 2 * farAway, 2 * farAway));
}

} // namespace

ZoneEditorTile::ZoneEditorTile(LayoutEditorModel& model, std::size_t index, QWidget* canvas)
    : QWidget(canvas)
    , model_(model)
    , index_(index) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ZoneEditorTile::refresh(const QRectF& canvasFrame) {
    const Zone& zone = model_.zones().at(index_);
    const QRectF frame(canvasFrame.x() + (zone.x * canvasFrame.width()),
                       canvasFrame.y() + (zone.y * canvasFrame.height()),
                       zone.width * canvasFrame.width(), zone.height * canvasFrame.height());
    const QString readout =
        ZoneEditorGeometry::pct(zone.width) + u" × "_s + ZoneEditorGeometry::pct(zone.height);
    if (frame != zoneFrame_ || readout != readout_) {
        zoneFrame_ = frame;
        readout_ = readout;
        updatePlace();
    }
    const QString name = accessibleNameOf(zone, index_);
    if (name != accessibleName())
        setAccessibleName(name);
    if (model_.isSelected(index_) != isSelected_) {
        isSelected_ = !isSelected_;
        update();
        QAccessible::State changed;
        changed.selected = true;
        QAccessibleStateChangeEvent event(this, changed);
        QAccessible::updateAccessibility(&event);
    }
    setVisible(!frame.isEmpty());
}

void ZoneEditorTile::updatePlace() {
    readoutFont_ = readoutFont();
    const QSizeF text = DigitText(readout_, readoutFont_).size();
    readoutFrame_ = QRectF(0, 0, text.width() + (2 * readoutSidePadding),
                           text.height() + (2 * readoutVerticalPadding));
    readoutFrame_.moveCenter(zoneFrame_.center());
    // It keeps its size on a smaller zone, so it may stick out; but nobody sees past the canvas.
    const QRectF canvas(parentWidget()->rect());
    if (canvas.intersects(zoneFrame_)) {
        readoutFrame_.moveLeft(std::max(
            canvas.left(), std::min(readoutFrame_.left(), canvas.right() - readoutFrame_.width())));
        readoutFrame_.moveTop(std::max(
            canvas.top(), std::min(readoutFrame_.top(), canvas.bottom() - readoutFrame_.height())));
    }
    setGeometry(inReach(zoneFrame_.united(readoutFrame_)).toAlignedRect());
    update();
}

void ZoneEditorTile::onSelect() {
    if (index_ < model_.zones().size())
        model_.select(model_.zones()[index_].id);
}

QString ZoneEditorTile::accessibleNameOf(const Zone& zone, std::size_t index) {
    const QString name = zone.name.isEmpty() ? tr("Zone %1").arg(index + 1) : zone.name;
    const auto percentage = [](double value) {
        QString text = ZoneEditorGeometry::pct(value);
        return text.insert(text.size() - 1, u' ');
    };
    return name + u", "_s + percentage(zone.width) + u" × "_s + percentage(zone.height);
}

std::optional<QPointF> ZoneEditorTile::nudgeOf(const QKeyEvent& event) {
    if ((event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) != Qt::NoModifier)
        return std::nullopt;
    const double step = (event.modifiers() & Qt::ShiftModifier) != 0
                            ? LayoutEditorModel::largeNudgeStep
                            : LayoutEditorModel::nudgeStep;
    switch (event.key()) {
    case Qt::Key_Left:
        return QPointF(-step, 0);
    case Qt::Key_Right:
        return QPointF(step, 0);
    case Qt::Key_Up:
        return QPointF(0, -step);
    case Qt::Key_Down:
        return QPointF(0, step);
    default:
        return std::nullopt;
    }
}

void ZoneEditorTile::keyPressEvent(QKeyEvent* event) {
    if (const auto nudge = nudgeOf(*event)) {
        model_.nudge(index_, nudge->x(), nudge->y());
        return;
    }
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        onSelect();
        return;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        // Only what is visibly selected goes; the focus may be on its way past this zone.
        if (model_.isSelected(index_))
            model_.deleteSelected();
        return;
    case Qt::Key_Escape:
        Q_EMIT cancelRequested();
        event->ignore();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void ZoneEditorTile::focusInEvent(QFocusEvent*) {
    update();
}

void ZoneEditorTile::focusOutEvent(QFocusEvent*) {
    update();
}

void ZoneEditorTile::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange)
        updatePlace();
    QWidget::changeEvent(event);
}

void ZoneEditorTile::paintReadout(QPainter& painter) const {
    painter.setPen(Qt::NoPen);
    painter.setBrush(readoutFill(palette()));
    painter.drawRoundedRect(readoutFrame_, readoutFrame_.height() / 2, readoutFrame_.height() / 2);
    painter.setPen(readoutText(palette()));
    DigitText(readout_, readoutFont_)
        .paint(painter,
               readoutFrame_.topLeft() + QPointF(readoutSidePadding, readoutVerticalPadding));
}

void ZoneEditorTile::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-pos());
    const QRectF zone = inReach(zoneFrame_);
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::tilewrightAmber(isSelected_ ? 0.32 : 0.18));
    painter.drawPath(look::continuousRoundedRect(zone, cornerRadius));
    look::strokeInside(painter, zone, cornerRadius, look::tilewrightAmber(isSelected_ ? 1.0 : 0.6),
                       isSelected_ ? 2 : 1);
    if (look::showsFocus(*this)) {
        look::paintFocusRing(painter, zone.adjusted(3, 3, -3, -3), cornerRadius - 1, palette());
    }
    paintReadout(painter);
}

} // namespace tilewright
