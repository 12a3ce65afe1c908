#include "Hairline.h"

#include "Look.h"

#include <QPainter>

namespace tilewright {

Hairline::Hairline(QWidget* parent)
    : QWidget(parent) {
    setFixedHeight(1);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Hairline::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), look::separator(palette()));
}

} // namespace tilewright
