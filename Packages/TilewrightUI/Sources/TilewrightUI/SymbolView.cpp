#include "SymbolView.h"

#include "Symbols.h"

#include <QPainter>

namespace tilewright {

SymbolView::SymbolView(int side, QWidget* parent)
    : QWidget(parent) {
    setFixedSize(side, side);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolView::setSymbol(const QString& name, Color color, Color second) {
    name_ = name;
    color_ = std::move(color);
    second_ = std::move(second);
    update();
}

void SymbolView::paintEvent(QPaintEvent*) {
    if (name_.isEmpty())
        return;
    QPainter painter(this);
    symbols::paint(painter, rect(), name_, color_(palette()), second_(palette()));
}

} // namespace tilewright
