#include "Look.h"

#include "Contrast.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <optional>

namespace tilewright::look {

namespace {

/// Hears of the application's font, which nobody else is told of.
class FontWatch final : public QObject {
    Q_OBJECT

public:
    /// The one watch of the running application.
    static FontWatch& shared() {
        static QPointer<FontWatch> watch;
        if (!watch)
            watch = new FontWatch(qApp);
        return *watch;
    }

Q_SIGNALS:
    void fontChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ApplicationFontChange && watched == qApp)
            Q_EMIT fontChanged();
        return false;
    }

private:
    explicit FontWatch(QObject* parent)
        : QObject(parent) {
        parent->installEventFilter(this);
    }
};

/// What the desktop told, where it did.
std::optional<bool>& toldReducedMotion() {
    static std::optional<bool> told;
    return told;
}

/// For desktops that are dark and have no palette for Qt.
QPalette darkPalette() {
    const QColor text(0xee, 0xee, 0xf0);
    const QColor faintText(0x8a, 0x8b, 0x90);
    const QColor background(0x2a, 0x2b, 0x2f);
    QPalette palette(QColor(0x3b, 0x3c, 0x41), background);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::ToolTipText, QPalette::BrightText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, faintText);
    }
    palette.setColor(QPalette::PlaceholderText, faintText);
    palette.setColor(QPalette::Base, QColor(0x1f, 0x20, 0x23));
    palette.setColor(QPalette::AlternateBase, background);
    palette.setColor(QPalette::ToolTipBase, background);
    palette.setColor(QPalette::Link, QColor(0xe0, 0x9c, 0x45));
    return palette;
}

QPalette accented(QPalette palette) {
    palette.setColor(QPalette::Highlight, tilewrightAmber());
    palette.setColor(QPalette::HighlightedText, Qt::black);
    return palette;
}

/// The size of a text style as a share of the application's font size.
double scale(TextStyle style) {
    switch (style) {
    case TextStyle::headline:
    case TextStyle::body:
        return 1.0;
    case TextStyle::callout:
        return 12.0 / 13.0;
    case TextStyle::caption:
    case TextStyle::caption2:
        return 10.5 / 13.0;
    }
    return 1.0;
}

/// The desktop's own colours of text and of windows.
QColor text(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::WindowText);
}
QColor window(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window);
}

QColor tone(const QPalette& palette, double light, double dark) {
    return withOpacity(text(palette), isDark(palette) ? dark : light);
}

/// As it can be read in a window and on every faint fill there.
QColor legibleInWindow(const QColor& color, const QPalette& palette) {
    const QColor ground = window(palette);
    return legible(color, {ground, over(quaternary(palette), ground)});
}

} // namespace

QColor tilewrightAmber(double opacity) {
    return QColor::fromRgbF(0.82F, 0.55F, 0.20F, static_cast<float>(opacity));
}

QColor withOpacity(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(static_cast<double>(color.alphaF()) * opacity));
    return color;
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightnessF() < 0.5F;
}

QColor primary(const QPalette& palette) {
    return legibleInWindow(text(palette), palette);
}

QColor secondary(const QPalette& palette) {
    return legibleInWindow(tone(palette, 0.58, 0.62), palette);
}

QColor quaternary(const QPalette& palette) {
    return tone(palette, 0.07, 0.09);
}

QColor separator(const QPalette& palette) {
    return tone(palette, 0.13, 0.16);
}

QColor cardFill(const QPalette& palette) {
    return tone(palette, 0.055, 0.06);
}

QColor panelFill(const QPalette& palette) {
    return window(palette);
}

QColor accentText(const QPalette& palette) {
    const QColor wanted = isDark(palette) ? QColor(0xe0, 0x9c, 0x45) : QColor(0x92, 0x56, 0x0a);
    return legibleInWindow(wanted, palette);
}

QColor accentTextOnAccent(const QPalette& palette) {
    return legible(accentText(palette), {over(accentFill(), window(palette))});
}

QColor textOnAmber(const QColor& amber) {
    return legible(QColor(0x2b, 0x1a, 0x04), {amber});
}

QColor accentFill() {
    return tilewrightAmber(0.18);
}

QColor placeholder(const QPalette& palette) {
    const QColor field = palette.color(QPalette::Active, QPalette::Base);
    return legible(withOpacity(palette.color(QPalette::Active, QPalette::Text), 0.5), {field});
}

QColor red(const QPalette& palette) {
    const QColor wanted = isDark(palette) ? QColor(0xff, 0x6a, 0x60) : QColor(0xbe, 0x26, 0x1e);
    return legibleInWindow(wanted, palette);
}

QColor green(const QPalette& palette) {
    return isDark(palette) ? QColor(0x32, 0xd1, 0x5a) : QColor(0x2a, 0xa8, 0x4a);
}

QColor orange(const QPalette& palette) {
    return isDark(palette) ? QColor(0xff, 0x9f, 0x1c) : QColor(0xf2, 0x8a, 0x0c);
}

QFont font(TextStyle style) {
    QFont result = QApplication::font();
    if (result.pointSizeF() > 0)
        result.setPointSizeF(result.pointSizeF() * scale(style));
    else
        result.setPixelSize(std::max(1, qRound(result.pixelSize() * scale(style))));
    if (style == TextStyle::headline)
        result.setWeight(std::max(result.weight(), QFont::DemiBold));
    return result;
}

QFont mediumFont(TextStyle style) {
    QFont result = font(style);
    result.setWeight(std::max(result.weight(), QFont::Medium));
    return result;
}

void loadFonts() {
    for (const TextStyle style : {TextStyle::headline, TextStyle::body, TextStyle::callout,
                                  TextStyle::caption, TextStyle::caption2}) {
        // Measuring is what makes Qt load a font.
        static_cast<void>(QFontMetricsF(font(style)).horizontalAdvance(u'x'));
    }
}

void whenFontChanges(QObject* context, const std::function<void()>& action) {
    QObject::connect(&FontWatch::shared(), &FontWatch::fontChanged, context, action);
}

QString plainText(const QString& text) {
    QString result = text;
    return result.replace(u'&', QStringLiteral("&&"));
}

QString singleLine(const QString& text) {
    QString result = text;
    for (QChar& character : result) {
        if (character.category() == QChar::Other_Control ||
            character.category() == QChar::Separator_Line ||
            character.category() == QChar::Separator_Paragraph)
            character = u' ';
    }
    return result;
}

QPainterPath continuousRoundedRect(const QRectF& rect, double radius) {
    QPainterPath path;
    const double half = std::min(rect.width(), rect.height()) / 2;
    const double r = std::min(radius, half);
    if (r <= 0) {
        path.addRect(rect);
        return path;
    }
    // Each corner leaves its side earlier than a circle would and bends less at first.
    const double reach = std::min(r * 1.28, half);
    const double handle = reach * 0.28;
    const auto corner = [&](QPointF vertex, QPointF from, QPointF to) {
        const QPointF start = vertex + (from * reach);
        const QPointF end = vertex + (to * reach);
        if (path.elementCount() == 0)
            path.moveTo(start);
        else
            path.lineTo(start);
        path.cubicTo(vertex + (from * handle), vertex + (to * handle), end);
    };
    const QPointF left(-1, 0);
    const QPointF right(1, 0);
    const QPointF up(0, -1);
    const QPointF down(0, 1);
    corner(rect.topRight(), left, down);
    corner(rect.bottomRight(), up, left);
    corner(rect.bottomLeft(), right, up);
    corner(rect.topLeft(), down, right);
    path.closeSubpath();
    return path;
}

void strokeInside(QPainter& painter, const QRectF& rect, double radius, const QColor& color,
                  double width) {
    if (rect.isEmpty())
        return;
    const double inset = std::min({width, rect.width(), rect.height()}) / 2;
    const double r = std::max(radius - inset, 0.0);
    painter.setPen(QPen(color, inset * 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), r, r);
}

void paintGlass(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette,
                ControlState state) {
    double light = 0.07;
    double dark = 0.10;
    if (state.isPressed) {
        light = 0.16;
        dark = 0.20;
    } else if (state.isHovered) {
        light = 0.10;
        dark = 0.14;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (!state.isEnabled)
        painter.setOpacity(painter.opacity() * 0.6);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tone(palette, light, dark));
    painter.drawRoundedRect(rect, radius, radius);
    strokeInside(painter, rect, radius, tone(palette, 0.09, 0.12), 1);
    painter.restore();
}

void paintFocusRing(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    strokeInside(painter, rect, radius, accentText(palette), 2);
    painter.restore();
}

void paintFocusRingOnAmber(QPainter& painter, const QRectF& rect, double radius) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    strokeInside(painter, rect.adjusted(1.5, 1.5, -1.5, -1.5), std::max(radius - 1.5, 0.0),
                 Qt::white, 1.5);
    painter.restore();
}

void applyPalette(bool prefersDark) {
    QApplication::setPalette(accented(QPalette()));
    if (prefersDark && !isDark(QApplication::palette()))
        QApplication::setPalette(accented(darkPalette()));
}

bool prefersReducedMotion() {
    if (toldReducedMotion())
        return *toldReducedMotion();
    const QStyle* style = QApplication::style();
    return style && style->styleHint(QStyle::SH_Widget_Animation_Duration) <= 0;
}

void setPrefersReducedMotion(std::optional<bool> reduced) {
    toldReducedMotion() = reduced;
}

} // namespace tilewright::look

#include "Look.moc"
