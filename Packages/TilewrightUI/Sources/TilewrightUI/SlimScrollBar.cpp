#include "SlimScrollBar.h"

#include "Look.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace tilewright {

namespace {

/// The slider's, in points.
constexpr double leastLength = 24;

} // namespace

SlimScrollBar::SlimScrollBar(QWidget* parent)
    : QScrollBar(Qt::Vertical, parent) {
    setFixedWidth(thickness);
    setAttribute(Qt::WA_Hover);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
}

SlimScrollBar::Span SlimScrollBar::track() const {
    constexpr double margin = 2;
    return {margin, height() - (2 * margin)};
}

SlimScrollBar::Span SlimScrollBar::slider() const {
    const double whole = static_cast<double>(maximum()) - minimum() + pageStep();
    if (maximum() <= minimum() || whole <= 0)
        return {};
    const Span room = track();
    const double length = std::max(leastLength, room.length * pageStep() / whole);
    const double share =
        static_cast<double>(sliderPosition() - minimum()) / (maximum() - minimum());
    return {room.start + ((room.length - length) * share), length};
}

void SlimScrollBar::paintEvent(QPaintEvent*) {
    const Span place = slider();
    if (place.length <= 0)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const bool isActive = underMouse() || isSliderDown();
    painter.setBrush(look::withOpacity(look::primary(palette()), isActive ? 0.45 : 0.25));
    const double width = isActive ? 7 : 5;
    painter.drawRoundedRect(QRectF((this->width() - width) / 2, place.start, width, place.length),
                            width / 2, width / 2);
}

// A style's own bar has buttons at its ends, where this one has none: it would take presses there
// for theirs.

void SlimScrollBar::mousePressEvent(QMouseEvent* event) {
    const Span place = slider();
    if (event->button() != Qt::LeftButton || place.length <= 0)
        return;
    const double way = event->position().y() - place.start;
    if (way < 0) {
        triggerAction(SliderPageStepSub);
    } else if (way >= place.length) {
        triggerAction(SliderPageStepAdd);
    } else {
        hold_ = way;
        setSliderDown(true);
    }
}

void SlimScrollBar::mouseMoveEvent(QMouseEvent* event) {
    if (!isSliderDown())
        return;
    const Span room = track();
    const double way = room.length - slider().length;
    if (way <= 0)
        return;
    const double share = (event->position().y() - hold_ - room.start) / way;
    setSliderPosition(minimum() + qRound(std::clamp(share, 0.0, 1.0) * (maximum() - minimum())));
}

void SlimScrollBar::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !isSliderDown())
        return;
    setSliderDown(false);
    update();
}

} // namespace tilewright
