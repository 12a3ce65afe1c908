#include "RoundedTextField.h"

#include "Look.h"

#include <QPainter>

namespace tilewright {

namespace {

constexpr double cornerRadius = 6;
constexpr int sideMargin = 5;
constexpr int verticalMargin = 2;

} // namespace

RoundedTextField::RoundedTextField(const QString& placeholder, QWidget* parent)
    : QLineEdit(parent) {
    setPlaceholderText(placeholder);
    setAccessibleName(placeholder);
    setFrame(false);
    setTextMargins(sideMargin, verticalMargin, sideMargin, verticalMargin);
    // The style would fill the corners; the background is painted here instead.
    QPalette withoutBase;
    withoutBase.setColor(QPalette::Base, Qt::transparent);
    setPalette(withoutBase);
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
        painter.setBrush(parentWidget() ? parentWidget()->palette().color(QPalette::Base)
                                        : QColor(Qt::white));
        painter.drawRoundedRect(field, cornerRadius, cornerRadius);
        if (hasFocus())
            look::paintFocusRing(painter, field, cornerRadius, palette());
        else
            look::strokeInside(painter, field, cornerRadius, look::separator(palette()), 1);
    }
    QLineEdit::paintEvent(event);
}

} // namespace tilewright
