#pragma once

#include <QFont>
#include <QPointF>
#include <QSizeF>
#include <QString>

class QPainter;

namespace tilewright {

/// One line of text whose digits all take the same width, in any font, so that a number that
/// changes does not make its surroundings dance. For short plain texts of digits, signs and Latin
/// letters.
class DigitText {
public:
    DigitText(const QString& text, const QFont& font);

    /// In points.
    [[nodiscard]] QSizeF size() const;
    /// Paints with the painter's pen; `topLeft` is where the text's box begins.
    void paint(QPainter& painter, QPointF topLeft) const;

private:
    QString text_;
    QFont font_;
    double digitWidth_ = 0;
    /// Whether the font's own digits are all of one width.
    bool isUniform_ = true;
};

} // namespace tilewright
