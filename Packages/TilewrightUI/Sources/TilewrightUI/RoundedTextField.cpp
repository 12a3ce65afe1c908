#include "RoundedTextField.h"

#include "ContextMenuKey.h"
#include "Look.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>

namespace tilewright {

namespace {

constexpr double cornerRadius = 6;
constexpr int sideMargin = 5;
constexpr int verticalMargin = 2;
/// What Qt keeps free beside the text by itself.
constexpr int innerMargin = 2;

} // namespace

RoundedTextField::RoundedTextField(const QString& placeholder, QWidget* parent)
    : QLineEdit(parent) {
    setPlaceholderText(placeholder);
    setAccessibleName(placeholder);
    setFrame(false);
    setTextMargins(sideMargin, verticalMargin, sideMargin, verticalMargin);
    applyPalette();
}

void RoundedTextField::applyPalette() {
    const QColor placeholder = look::placeholder(ground());
    if (palette().color(QPalette::PlaceholderText) == placeholder)
        return;
    QPalette own;
    // The style would fill the corners; the background is painted here instead.
    own.setColor(QPalette::Base, Qt::transparent);
    // What a desktop tells Qt of this colour may not be readable on its own fields.
    own.setColor(QPalette::PlaceholderText, placeholder);
    setPalette(own);
}

QPalette RoundedTextField::ground() const {
    return parentWidget() ? parentWidget()->palette() : QPalette();
}

void RoundedTextField::keyPressEvent(QKeyEvent* event) {
    if (!openContextMenuByKey(*this, *event))
        QLineEdit::keyPressEvent(event);
}

void RoundedTextField::changeEvent(QEvent* event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyPalette();
}

QSize RoundedTextField::sizeHint() const {
    const QFontMetrics text(font());
    return {text.horizontalAdvance(QStringLiteral("My Priority Center")) + (4 * sideMargin),
            text.height() + (2 * verticalMargin) + 6};
}

QSize RoundedTextField::minimumSizeHint() const {
    const QFontMetrics text(font());
    return {text.horizontalAdvance(QStringLiteral("My Layout")) + (4 * sideMargin),
            sizeHint().height()};
}

void RoundedTextField::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF field(rect());
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground().color(QPalette::Base));
        painter.drawRoundedRect(field, cornerRadius, cornerRadius);
        if (hasFocus())
            look::paintFocusRing(painter, field, cornerRadius, palette());
        else
            look::strokeInside(painter, field, cornerRadius, look::separator(palette()), 1);
    }
    if (hasFocus() || !paintShortened())
        QLineEdit::paintEvent(event);
}

bool RoundedTextField::paintShortened() {
    const int inset = textMargins().left() + innerMargin;
    const QRect room = rect().adjusted(inset, 0, -inset, 0);
    const QFontMetrics metrics(font());
    if (metrics.horizontalAdvance(text()) <= room.width())
        return false;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Text));
    const Qt::Alignment alignment =
        QStyle::visualAlignment(layoutDirection(), Qt::AlignLeading | Qt::AlignVCenter);
    painter.drawText(room, static_cast<int>(alignment) | Qt::TextSingleLine,
                     metrics.elidedText(text(), Qt::ElideRight, room.width()));
    return true;
}

} // namespace tilewright
