#include "ToggleSwitch.h"

#include "FocusVisibility.h"
#include "Look.h"

#include <QPainter>

namespace tilewright {

namespace {

constexpr double knobInset = 2;

QColor mix(const QColor& from, const QColor& to, double share) {
    const auto channel = [share](float a, float b) {
        return a + ((b - a) * static_cast<float>(share));
    };
    return QColor::fromRgbF(channel(from.redF(), to.redF()), channel(from.greenF(), to.greenF()),
                            channel(from.blueF(), to.blueF()), channel(from.alphaF(), to.alphaF()));
}

} // namespace

ToggleSwitch::ToggleSwitch(const QString& accessibleName, QWidget* parent)
    : AskingToggle(parent)
    , knob_(Spring{0.25}, 0, [this](double) { update(); }) {
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::toggled, this, &ToggleSwitch::slide);
}

void ToggleSwitch::slide() {
    // An assistive tool's flip has been taken back by now: only the state itself counts.
    const double target = isOn() ? 1 : 0;
    if (isVisible())
        knob_.animateTo(target);
    else
        knob_.jumpTo(target);
}

void ToggleSwitch::hideEvent(QHideEvent* event) {
    knob_.finish();
    AskingToggle::hideEvent(event);
}

void ToggleSwitch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(0.4);
    const QRectF track(rect());
    const double radius = track.height() / 2;
    const double share = qBound(0.0, knob_.value(), 1.0);
    const QColor text = look::primary(palette());
    const bool dark = look::isDark(palette());
    const QColor off = look::withOpacity(text, dark ? 0.16 : 0.09);
    painter.setPen(Qt::NoPen);
    painter.setBrush(mix(off, look::tilewrightAmber(), share));
    painter.drawRoundedRect(track, radius, radius);
    look::strokeInside(painter, track, radius, look::withOpacity(text, 0.10), 1);

    const double diameter = track.height() - (2 * knobInset);
    const double way = track.width() - (2 * knobInset) - diameter;
    const double place = layoutDirection() == Qt::RightToLeft ? 1 - share : share;
    const QRectF knob(track.left() + knobInset + (way * place), track.top() + knobInset, diameter,
                      diameter);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 38));
    painter.drawEllipse(knob.adjusted(-0.5, 0.25, 0.5, 1.25));
    painter.setBrush(isDown() ? QColor(0xf2, 0xf2, 0xf2) : QColor(Qt::white));
    painter.drawEllipse(knob);
    if (look::showsFocus(*this) && isChecked())
        look::paintFocusRingOnAmber(painter, track, radius);
    else if (look::showsFocus(*this))
        look::paintFocusRing(painter, track, radius, palette());
}

} // namespace tilewright
