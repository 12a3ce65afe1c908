#include "PopUpButton.h"

#include "FocusVisibility.h"
#include "Look.h"
#include "Symbols.h"

#include <QAbstractItemView>
#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace tilewright {

namespace {

constexpr double sidePadding = 7;
constexpr double gap = 6;
constexpr double chevrons = 10;
constexpr double cornerRadius = 5;

} // namespace

PopUpButton::PopUpButton(const QString& accessibleName, QWidget* parent)
    : QComboBox(parent) {
    setAccessibleName(accessibleName);
    // On some desktops Qt gives assistive tools the choice shown as the name.
    setAccessibleDescription(accessibleName);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    setFont(look::font(look::TextStyle::body));
    look::whenFontChanges(this, [this] {
        setFont(look::font(look::TextStyle::body));
        updateGeometry();
    });
}

void PopUpButton::setItems(const std::vector<Item>& items) {
    if (items == items_)
        return;
    items_ = items;
    const QString selected = selectedID();
    clear();
    for (const Item& item : items_)
        addItem(item.title, item.id);
    select(selected);
    updateGeometry();
}

void PopUpButton::select(const QString& id) {
    setCurrentIndex(id.isEmpty() ? -1 : findData(id));
}

QSize PopUpButton::sizeHint() const {
    const QFontMetricsF metrics(font());
    double widest = 0;
    for (const Item& item : items_)
        widest = std::max(widest, metrics.horizontalAdvance(item.title));
    return {static_cast<int>(std::ceil(widest + (2 * sidePadding) + gap + chevrons)),
            static_cast<int>(std::ceil(metrics.height() + 5))};
}

QSize PopUpButton::minimumSizeHint() const {
    const QSize hint = sizeHint();
    return {std::min(hint.width(), 44), hint.height()};
}

void PopUpButton::showPopup() {
    // The list shows whole titles, where the button itself may be too narrow for them.
    view()->setMinimumWidth(std::max(width(), view()->sizeHintForColumn(0) + (4 * qRound(gap))));
    QComboBox::showPopup();
    QWidget& list = *view()->window();
    const QRect room(window()->mapToGlobal(QPoint()), window()->size());
    if (list.width() <= room.width()) {
        const int last = room.right() + 1 - list.width();
        list.move(std::clamp(list.x(), room.left(), last), list.y());
    }
}

void PopUpButton::wheelEvent(QWheelEvent* event) {
    // Scrolling past must not change a choice.
    event->ignore();
}

void PopUpButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(0.4);
    const QRectF bezel(rect());
    look::paintGlass(painter, bezel, cornerRadius, palette(), {isEnabled(), underMouse(), false});

    const QColor color = look::primary(palette());
    const QRect chevronPlace(qRound(bezel.right() - sidePadding - chevrons),
                             qRound(bezel.center().y() - (chevrons / 2)), qRound(chevrons),
                             qRound(chevrons));
    symbols::paint(painter, QStyle::visualRect(layoutDirection(), rect(), chevronPlace),
                   QStringLiteral("chevron.up.chevron.down"), color);

    const QRect textPlace(qRound(sidePadding), 0,
                          qRound(bezel.width() - (2 * sidePadding) - gap - chevrons), height());
    painter.setPen(color);
    painter.setFont(font());
    const QFontMetricsF metrics(font());
    const QString shown =
        metrics.elidedText(currentText(), Qt::ElideRight, textPlace.width() + 0.5);
    const Qt::Alignment alignment =
        QStyle::visualAlignment(layoutDirection(), Qt::AlignLeading | Qt::AlignVCenter);
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), textPlace),
                     static_cast<int>(alignment) | Qt::TextSingleLine, shown);
    if (look::showsFocus(*this))
        look::paintFocusRing(painter, bezel, cornerRadius, palette());
}

} // namespace tilewright
