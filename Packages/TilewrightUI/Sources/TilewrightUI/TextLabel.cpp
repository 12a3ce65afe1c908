#include "TextLabel.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>
#include <algorithm>
#include <cmath>

namespace tilewright {

namespace {

constexpr double smallestScale = 0.8;

QFont scaled(QFont font, double scale) {
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * scale);
    else
        font.setPixelSize(std::max(1, static_cast<int>(font.pixelSize() * scale)));
    return font;
}

} // namespace

TextLabel::TextLabel(const QString& text, look::TextStyle style, Importance importance,
                     QWidget* parent)
    : QLabel(parent)
    , style_(style)
    , importance_(importance) {
    setTextFormat(Qt::PlainText);
    setFont(look::font(style_));
    setText(text);
    look::whenFontChanges(this, [this] { setFont(look::font(style_)); });
}

void TextLabel::setOverflow(Overflow overflow) {
    overflow_ = overflow;
    setWordWrap(overflow == Overflow::wrap);
    updateGeometry();
    update();
}

TextLabel::Fitted TextLabel::fitted() const {
    Fitted result{text(), font(), 1};
    if (overflow_ == Overflow::none || overflow_ == Overflow::wrap)
        return result;
    const double room = contentsRect().width();
    const double wanted = QFontMetricsF(result.font).horizontalAdvance(result.text);
    if (wanted <= room)
        return result;
    if (overflow_ == Overflow::shrinkThenElide) {
        // Hinted glyphs do not shrink evenly, so the exact share may still be a little too wide.
        for (double scale = std::max(room / wanted, smallestScale);; scale -= 0.01) {
            result.scale = std::max(scale, smallestScale);
            result.font = scaled(font(), result.scale);
            if (QFontMetricsF(result.font).horizontalAdvance(result.text) <= room)
                return result;
            if (scale <= smallestScale)
                break;
        }
    }
    const auto mode = overflow_ == Overflow::elideMiddle ? Qt::ElideMiddle : Qt::ElideRight;
    result.text = QFontMetricsF(result.font).elidedText(result.text, mode, room);
    return result;
}

QString TextLabel::toolTipText() const {
    if (shownText() == text())
        return {};
    // Marked as rich text, so that nothing in the text itself can be taken for it.
    return QStringLiteral("<qt>%1</qt>").arg(text().toHtmlEscaped());
}

bool TextLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const QString whole = toolTipText();
        if (!whole.isEmpty()) {
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), whole, this);
            return true;
        }
    }
    return QLabel::event(event);
}

QSize TextLabel::sizeHint() const {
    if (overflow_ == Overflow::wrap)
        return QLabel::sizeHint();
    const QFontMetricsF metrics(font());
    return {static_cast<int>(std::ceil(metrics.horizontalAdvance(text()))),
            static_cast<int>(std::ceil(metrics.height()))};
}

QSize TextLabel::minimumSizeHint() const {
    if (overflow_ == Overflow::wrap)
        return QLabel::minimumSizeHint();
    const QSize hint = sizeHint();
    return overflow_ == Overflow::none ? hint : QSize(0, hint.height());
}

void TextLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Fitted shown = fitted();
    painter.setFont(shown.font);
    painter.setPen(importance_ == Importance::primary ? look::primary(palette())
                                                      : look::secondary(palette()));
    if (!isEnabled())
        painter.setOpacity(0.4);
    const Qt::Alignment visual = QStyle::visualAlignment(layoutDirection(), alignment());
    int flags = static_cast<int>(visual);
    flags |= overflow_ == Overflow::wrap ? Qt::TextWordWrap : Qt::TextSingleLine;
    painter.drawText(contentsRect(), flags, shown.text);
}

} // namespace tilewright
