#include "SymbolTabBar.h"

#include "SymbolTabBarAccessible.h"

#include <TilewrightUI/FocusVisibility.h>
#include <TilewrightUI/Look.h>
#include <TilewrightUI/Symbols.h>

#include <QFontMetricsF>
#include <QPainter>
#include <QStyleOptionTab>
#include <algorithm>
#include <cmath>

namespace tilewright {

namespace {

constexpr int symbolSide = 20;
constexpr int gap = 4;
constexpr int sidePadding = 12;
constexpr int verticalPadding = 6;
constexpr int minimumTabWidth = 64;
constexpr double cornerRadius = 8;
/// Titles bear the marks of plain text.
constexpr int textFlags = Qt::TextSingleLine | Qt::TextShowMnemonic;

} // namespace

SymbolTabBar::SymbolTabBar(QWidget* parent)
    : QTabBar(parent) {
    installSymbolTabBarAccessibility();
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setFont(look::font(look::TextStyle::caption));
    look::whenFontChanges(this, [this] { setFont(look::font(look::TextStyle::caption)); });
}

void SymbolTabBar::addSymbolTab(const QString& symbol, const QString& title) {
    setTabData(addTab(look::plainText(title)), symbol);
}

QSize SymbolTabBar::tabSizeHint(int index) const {
    const QFontMetricsF metrics(font());
    const double text = metrics.size(textFlags, tabText(index)).width();
    return {std::max(minimumTabWidth, static_cast<int>(std::ceil(text)) + (2 * sidePadding)),
            static_cast<int>(std::ceil(metrics.height())) + symbolSide + gap +
                (2 * verticalPadding)};
}

void SymbolTabBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int index = 0; index < count(); ++index)
        paintTab(painter, index);
}

void SymbolTabBar::paintTab(QPainter& painter, int index) const {
    const QRectF shape = tabRect(index);
    const bool isCurrent = index == currentIndex();
    // Not by asking where the pointer is: that is a wait for the display server while painting.
    QStyleOptionTab option;
    initStyleOption(&option, index);
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    if (isCurrent || isHovered) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(look::withOpacity(look::primary(palette()), isCurrent ? 0.07 : 0.035));
        painter.drawRoundedRect(shape, cornerRadius, cornerRadius);
    }
    const QColor color = isCurrent ? look::accentText(palette()) : look::secondary(palette());
    symbols::paint(painter,
                   QRectF(shape.center().x() - (symbolSide / 2.0), shape.top() + verticalPadding,
                          symbolSide, symbolSide),
                   tabSymbol(index), color);
    painter.setPen(color);
    painter.setFont(font());
    painter.drawText(shape.adjusted(0, verticalPadding + symbolSide + gap, 0, -verticalPadding),
                     Qt::AlignCenter | textFlags, tabText(index));
    if (isCurrent && look::showsFocus(*this))
        look::paintFocusRing(painter, shape, cornerRadius, palette());
}

} // namespace tilewright
