#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QString>

class QPainter;
class QRectF;

/// The program's symbols: own drawings, one SVG resource for each symbol name, such as
/// "cup.and.saucer.fill". Drawn in one colour; symbols of two tones take a second one.
namespace tilewright::symbols {

/// Whether there is a drawing under this name.
[[nodiscard]] bool exists(const QString& name);
/// Draws the symbol into the rectangle, centred, keeping its proportions.
void paint(QPainter& painter, const QRectF& rect, const QString& name, const QColor& color,
           const QColor& second = Qt::transparent);
/// Draws a symbol of that side length where a line begins, and a text after the gap, in the
/// painter's pen, font and layout direction, and both in the middle of the rectangle's height.
/// Without a symbol's name the text alone.
void paintLabel(QPainter& painter, const QRectF& rect, Qt::LayoutDirection direction,
                const QString& name, double side, double gap, const QString& text);
/// The symbol in a square of `size` points, at the device pixel ratio.
[[nodiscard]] QPixmap pixmap(const QString& name, double size, const QColor& color,
                             double devicePixelRatio, const QColor& second = Qt::transparent);
/// The symbol as an icon that renders itself at each size asked for.
[[nodiscard]] QIcon icon(const QString& name, const QColor& color);
/// The program's own icon, in its colours, in the sizes that window managers and bars show.
[[nodiscard]] QIcon applicationIcon();

} // namespace tilewright::symbols
