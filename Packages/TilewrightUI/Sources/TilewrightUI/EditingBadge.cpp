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
    const QRectF badge(rect());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::accentFill());
    painter.drawRoundedRect(badge, badge.height() / 2, badge.height() / 2);

    painter.setFont(font);
    painter.setPen(look::accentTextOnAccent(palette()));
    symbols::paintLabel(painter, badge.adjusted(sidePadding, 0, -sidePadding, 0), layoutDirection(),
                        QStringLiteral("pencil"), symbolSide(QFontMetricsF(font)), symbolGap,
                        text());
}

} // namespace tilewright
