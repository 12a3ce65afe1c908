#include "SymbolTabBar.h"

#include <TilewrightUI/Look.h>
#include <TilewrightUI/Symbols.h>

#include <QFocusEvent>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
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

} // namespace

SymbolTabBar::SymbolTabBar(QWidget* parent)
    : QTabBar(parent) {
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
    tabs_.push_back({symbol, title});
    addTab(look::plainText(title));
}

QSize SymbolTabBar::tabSizeHint(int index) const {
    const QFontMetricsF metrics(font());
    const double text = metrics.horizontalAdvance(tabs_.at(static_cast<std::size_t>(index)).title);
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

void SymbolTabBar::showFocus(bool shows) {
    showsFocus_ = shows;
    update();
}

void SymbolTabBar::focusInEvent(QFocusEvent* event) {
    QTabBar::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        showFocus(true);
}

void SymbolTabBar::keyPressEvent(QKeyEvent* event) {
    showFocus(true);
    QTabBar::keyPressEvent(event);
}

void SymbolTabBar::mousePressEvent(QMouseEvent* event) {
    showFocus(false);
    QTabBar::mousePressEvent(event);
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
    const Tab& tab = tabs_[static_cast<std::size_t>(index)];
    symbols::paint(painter,
                   QRectF(shape.center().x() - (symbolSide / 2.0), shape.top() + verticalPadding,
                          symbolSide, symbolSide),
                   tab.symbol, color);
    painter.setPen(color);
    painter.setFont(font());
    painter.drawText(shape.adjusted(0, verticalPadding + symbolSide + gap, 0, -verticalPadding),
                     Qt::AlignCenter | Qt::TextSingleLine, tab.title);
    if (isCurrent && hasFocus() && showsFocus_)
        look::paintFocusRing(painter, shape, cornerRadius, palette());
}

} // namespace tilewright
