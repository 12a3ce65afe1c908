#include "EditingBadge.h"

#include "Look.h"
#include "Symbols.h"
#include "ZoneEditorTileAccessible.h"

#include <QFontMetricsF>
#include <QPainter>
#include <cmath>

namespace tilewright {

namespace {

constexpr double sidePadding = 7;
constexpr double verticalPadding = 2;
constexpr double symbolGap = 4;

double symbolSide(const QFontMetricsF& text) {
    return std::round(text.ascent());
}

} // namespace

EditingBadge::EditingBadge(QWidget* parent)
    : QWidget(parent) {
    // Before the name: naming it makes Qt decide what it is.
    installZoneEditorAccessibility();
    setAccessibleName(tr("Editing"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize EditingBadge::sizeHint() const {
    const QFontMetricsF metrics(look::font(look::TextStyle::caption));
    return {static_cast<int>(std::ceil(metrics.horizontalAdvance(text()) + symbolSide(metrics) +
                                       symbolGap + (2 * sidePadding))),
            static_cast<int>(std::ceil(metrics.height() + (2 * verticalPadding)))};
}

void EditingBadge::paintEvent(QPaintEvent*) {
    const QFont font = look::font(look::TextStyle::caption);
    const double side = symbolSide(QFontMetricsF(font));
    const QColor color = look::accentText(palette());
    const QRectF badge(rect());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::tilewrightAmber(0.18));
    painter.drawRoundedRect(badge, badge.height() / 2, badge.height() / 2);

    QRectF symbol(badge.left() + sidePadding, badge.center().y() - (side / 2), side, side);
    QRectF label = badge.adjusted(sidePadding + side + symbolGap, 0, 1 - sidePadding, 0);
    if (layoutDirection() == Qt::RightToLeft) {
        symbol.moveRight(badge.right() - sidePadding);
        label.moveLeft(badge.left() + sidePadding - 1);
    }
    symbols::paint(painter, symbol, QStringLiteral("pencil"), color);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(label, Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine, text());
}

} // namespace tilewright
