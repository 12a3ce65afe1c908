#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QRectF>
#include <QString>
#include <functional>
#include <optional>

class QObject;
class QPainter;
class QPainterPath;

/// The shared look of the views, by name. Lengths are in points (Qt's device-independent
/// pixels). Light and dark follow the desktop through the widget's palette: a widget asks afresh
/// whenever it paints, and so follows a change of the palette by itself. Colours of texts are those
/// of the palette and the look where they can be read on what they are for, else the nearest that
/// can.
namespace tilewright::look {

/// The one accent colour: sRGB 0.82, 0.55, 0.20, opaque unless told otherwise.
[[nodiscard]] QColor tilewrightAmber(double opacity = 1.0);

/// Corner radius of the overlay's tiles.
inline constexpr double overlayCornerRadius = 16;
/// Corner radius of the panel.
inline constexpr double panelCornerRadius = 14;
/// The padding of a window's content, and between its large parts.
inline constexpr int defaultPadding = 16;
/// The distance between the items of a row where nothing else is asked for.
inline constexpr int defaultSpacing = 8;

/// The colour with its opacity multiplied.
[[nodiscard]] QColor withOpacity(QColor color, double opacity);

/// Whether the palette is a dark one.
[[nodiscard]] bool isDark(const QPalette& palette);
/// Text of first importance.
[[nodiscard]] QColor primary(const QPalette& palette);
/// Text of secondary importance.
[[nodiscard]] QColor secondary(const QPalette& palette);
/// The faintest fill, behind thumbnails and the canvas.
[[nodiscard]] QColor quaternary(const QPalette& palette);
/// Hairlines between sections.
[[nodiscard]] QColor separator(const QPalette& palette);
/// The fill of cards and grouped rows.
[[nodiscard]] QColor cardFill(const QPalette& palette);
/// The background of the panel.
[[nodiscard]] QColor panelFill(const QPalette& palette);
/// The accent for text and thin symbols, dark enough to be read on a light background.
[[nodiscard]] QColor accentText(const QPalette& palette);
/// The translucent fill in the accent colour that marks what is current.
[[nodiscard]] QColor accentFill();
/// The accent for text on that fill.
[[nodiscard]] QColor accentTextOnAccent(const QPalette& palette);
/// Text on an opaque fill of the accent or a shade of it.
[[nodiscard]] QColor textOnAmber(const QColor& amber);
/// The text in an empty field that says what belongs there.
[[nodiscard]] QColor placeholder(const QPalette& palette);
/// The red of destructive actions and error toasts.
[[nodiscard]] QColor red(const QPalette& palette);
/// The green of what is in order.
[[nodiscard]] QColor green(const QPalette& palette);
/// The orange of warnings.
[[nodiscard]] QColor orange(const QPalette& palette);

/// Text styles, relative to the desktop's own font size.
enum class TextStyle { headline, body, callout, caption, caption2 };
/// The application's font in that style, as it is now.
[[nodiscard]] QFont font(TextStyle style);
/// The same, at least of medium weight.
[[nodiscard]] QFont mediumFont(TextStyle style);

/// Loads the fonts of all text styles, which takes tens of milliseconds once in a process. A
/// program calls it while nobody waits; otherwise the first view shown does it.
void loadFonts();
/// Calls back after each change of the application's font, for as long as the context lives.
/// Qt tells its widgets nothing of it.
void whenFontChanges(QObject* context, const std::function<void()>& action);

/// The text with each "&" doubled, for places that would take one as the mark of a mnemonic.
[[nodiscard]] QString plainText(const QString& text);

/// The text on one line: each tab, line break and other control character is a space.
[[nodiscard]] QString singleLine(const QString& text);

/// A rounded rectangle whose corners run over into the sides with continuous curvature. The radius
/// is cut to half the shorter side.
[[nodiscard]] QPainterPath continuousRoundedRect(const QRectF& rect, double radius);
/// Strokes a rounded rectangle inside its edge, `width` wide. Draws nothing for an empty one.
void strokeInside(QPainter& painter, const QRectF& rect, double radius, const QColor& color,
                  double width);

/// How a control stands to the pointer and the keyboard.
struct ControlState {
    bool isEnabled = true;
    bool isHovered = false;
    bool isPressed = false;
};
/// The translucent surface of glass controls: a faint fill under a hairline.
void paintGlass(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette,
                ControlState state);
/// The mark of the keyboard focus, inside the control's edge.
void paintFocusRing(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette);
/// The same over an amber fill.
void paintFocusRingOnAmber(QPainter& painter, const QRectF& rect, double radius);

/// Puts the accent into the application's palette, and makes that dark where the user asked the
/// desktop for it and what Qt chose by itself is light. Everything else stays Qt's
/// choice, which may change, and comes back when that wish ends.
void applyPalette(bool prefersDark);

/// Whether the user asked the desktop for reduced motion; animations then take no time.
[[nodiscard]] bool prefersReducedMotion();
/// What the desktop says about reduced motion; none where it says nothing, and Qt's style
/// decides. It holds until the next call.
void setPrefersReducedMotion(std::optional<bool> reduced);

} // namespace tilewright::look
