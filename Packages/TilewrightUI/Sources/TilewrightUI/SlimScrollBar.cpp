#include "SlimScrollBar.h"

#include "Look.h"

#include <QPainter>
#include <algorithm>

namespace tilewright {

SlimScrollBar::SlimScrollBar(QWidget* parent)
    : QScrollBar(Qt::Vertical, parent) {
    setFixedWidth(thickness);
    setAttribute(Qt::WA_Hover);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
}

void SlimScrollBar::paintEvent(QPaintEvent*) {
    const double whole = static_cast<double>(maximum()) - minimum() + pageStep();
    if (maximum() <= minimum() || whole <= 0)
        return;
    constexpr double margin = 2;
    const double room = height() - (2 * margin);
    const double length = std::max(24.0, room * pageStep() / whole);
    const double share = static_cast<double>(value() - minimum()) / (maximum() - minimum());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const bool isActive = underMouse() || isSliderDown();
    painter.setBrush(look::withOpacity(look::primary(palette()), isActive ? 0.45 : 0.25));
    const double width = isActive ? 7 : 5;
    painter.drawRoundedRect(
        QRectF((this->width() - width) / 2, margin + ((room - length) * share), width, length),
        width / 2, width / 2);
}

} // namespace tilewright
