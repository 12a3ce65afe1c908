#include "DigitText.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

namespace tilewright {

DigitText::DigitText(const QString& text, const QFont& font)
    : text_(text)
    , font_(font) {
    const QFontMetricsF metrics(font_);
    digitWidth_ = metrics.horizontalAdvance(u'0');
    for (char16_t digit = u'1'; digit <= u'9'; ++digit) {
        const double width = metrics.horizontalAdvance(QChar(digit));
        isUniform_ = isUniform_ && width == digitWidth_;
        digitWidth_ = std::max(digitWidth_, width);
    }
}

QSizeF DigitText::size() const {
    const QFontMetricsF metrics(font_);
    if (isUniform_)
        return {metrics.horizontalAdvance(text_), metrics.height()};
    double width = 0;
    for (const QChar character : text_)
        width += character.isDigit() ? digitWidth_ : metrics.horizontalAdvance(character);
    return {width, metrics.height()};
}

void DigitText::paint(QPainter& painter, QPointF topLeft) const {
    const QFontMetricsF metrics(font_);
    painter.setFont(font_);
    QPointF position = topLeft + QPointF(0, metrics.ascent());
    if (isUniform_) {
        painter.drawText(position, text_);
        return;
    }
    for (const QChar character : text_) {
        const double own = metrics.horizontalAdvance(character);
        const double width = character.isDigit() ? digitWidth_ : own;
        painter.drawText(position + QPointF((width - own) / 2, 0), QString(character));
        position.rx() += width;
    }
}

} // namespace tilewright
