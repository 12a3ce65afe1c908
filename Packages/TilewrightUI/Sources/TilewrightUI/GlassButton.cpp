#include "GlassButton.h"

#include "FocusVisibility.h"
#include "Symbols.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tilewright {

/// The lengths a button is made of, at its present font.
struct GlassButton::Metrics {
    double sidePadding = 0;
    double verticalPadding = 0;
    double symbolSide = 0;
    double symbolGap = 0;
    double chevronSide = 0;
    double chevronGap = 0;
    double titleWidth = 0;
    double textHeight = 0;

    [[nodiscard]] double width() const {
        return (2 * sidePadding) + symbolSide + symbolGap + titleWidth + chevronGap + chevronSide;
    }
    [[nodiscard]] double height() const {
        return (2 * verticalPadding) + std::max(textHeight, symbolSide);
    }
};

GlassButton::GlassButton(const QString& title, Kind kind, QWidget* parent)
    : QAbstractButton(parent)
    , kind_(kind) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(kind == Kind::bordered ? QSizePolicy::Preferred : QSizePolicy::Fixed,
                  QSizePolicy::Fixed);
    applyFont();
    setTitle(title);
    look::whenFontChanges(this, [this] { applyFont(); });
}

void GlassButton::setTitle(const QString& title) {
    title_ = title;
    setText(look::plainText(title));
    updateGeometry();
    update();
}

void GlassButton::setSymbol(const QString& name) {
    symbol_ = name;
    updateGeometry();
    update();
}

void GlassButton::setRole(Role role) {
    role_ = role;
    update();
}

void GlassButton::setControlSize(ControlSize size) {
    size_ = size;
    applyFont();
    updateGeometry();
}

void GlassButton::setMenu(QMenu* menu) {
    delete menu_;
    menu_ = menu;
    if (menu_) {
        menu_->setParent(this, menu_->windowFlags());
        connect(this, &QAbstractButton::clicked, this, &GlassButton::popUpMenu,
                Qt::UniqueConnection);
    }
    updateGeometry();
    update();
}

void GlassButton::popUpMenu() {
    if (!menu_)
        return;
    // Shown, not executed: nothing here runs an event loop of its own.
    const bool rightToLeft = layoutDirection() == Qt::RightToLeft;
    const int shift = rightToLeft ? width() - menu_->sizeHint().width() : 0;
    menu_->popup(mapToGlobal(QPoint(shift, height() + 2)));
}

void GlassButton::applyFont() {
    if (kind_ == Kind::plain)
        setFont(look::font(look::TextStyle::caption));
    else if (size_ == ControlSize::small)
        setFont(look::font(look::TextStyle::callout));
    else if (kind_ == Kind::prominent)
        setFont(look::mediumFont(look::TextStyle::body));
    else
        setFont(look::font(look::TextStyle::body));
    updateGeometry();
}

GlassButton::Metrics GlassButton::metrics() const {
    const QFontMetricsF text(font());
    Metrics result;
    const bool isSmall = size_ == ControlSize::small;
    if (kind_ != Kind::plain) {
        result.sidePadding = isSmall ? 8 : 10;
        result.verticalPadding = isSmall ? 1.5 : 3;
    }
    result.titleWidth = text.horizontalAdvance(title_);
    result.textHeight = text.height();
    if (!symbol_.isEmpty()) {
        result.symbolSide = std::round(text.ascent() * 0.95);
        result.symbolGap = 5;
    }
    if (menu_) {
        result.chevronSide = std::round(text.ascent() * 0.7);
        result.chevronGap = 4;
    }
    return result;
}

QSize GlassButton::sizeHint() const {
    const Metrics lengths = metrics();
    return {static_cast<int>(std::ceil(lengths.width())),
            static_cast<int>(std::ceil(lengths.height()))};
}

QSize GlassButton::minimumSizeHint() const {
    const QSize hint = sizeHint();
    if (kind_ != Kind::bordered)
        return hint;
    return {std::min(hint.width(), 60), hint.height()};
}

QColor GlassButton::textColor() const {
    if (role_ == Role::destructive)
        return look::red(palette());
    if (kind_ == Kind::prominent)
        return Qt::white;
    if (kind_ == Kind::plain && !underMouse())
        return look::secondary(palette());
    return look::primary(palette());
}

void GlassButton::paintBezel(QPainter& painter, const QRectF& bezel, double radius) const {
    const look::ControlState state{isEnabled(), underMouse(), isDown()};
    if (kind_ == Kind::prominent) {
        QColor fill = look::tilewrightAmber();
        if (state.isPressed)
            fill = fill.darker(115);
        else if (state.isHovered)
            fill = fill.lighter(106);
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(bezel, radius, radius);
    } else if (role_ == Role::destructive && kind_ == Kind::bordered) {
        const double base = look::isDark(palette()) ? 0.18 : 0.14;
        const double more = state.isPressed ? 0.14 : state.isHovered ? 0.06 : 0;
        painter.setPen(Qt::NoPen);
        painter.setBrush(look::withOpacity(look::red(palette()), base + more));
        painter.drawRoundedRect(bezel, radius, radius);
    } else if (kind_ != Kind::plain) {
        look::paintGlass(painter, bezel, radius, palette(), state);
    }
}

void GlassButton::paintFocus(QPainter& painter, const QRectF& bezel, double radius) const {
    if (kind_ == Kind::prominent) {
        look::paintFocusRingOnAmber(painter, bezel, radius);
    } else if (kind_ == Kind::plain) {
        // A bezel would not fit around bare text; a line under it does.
        painter.fillRect(QRectF(bezel.left(), bezel.bottom() - 1.5, bezel.width(), 1.5),
                         look::accentText(palette()));
    } else {
        look::paintFocusRing(painter, bezel, radius, palette());
    }
}

void GlassButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(0.4);
    const QRectF bezel(rect());
    const double radius = kind_ == Kind::bordered ? 5 : bezel.height() / 2;
    paintBezel(painter, bezel, radius);

    const Metrics lengths = metrics();
    const double room = bezel.width() - (2 * lengths.sidePadding);
    const double fixed = lengths.width() - (2 * lengths.sidePadding) - lengths.titleWidth;
    const double titleWidth = std::max(0.0, std::min(lengths.titleWidth, room - fixed));
    const double contentWidth = fixed + titleWidth;
    double x = bezel.left() + ((bezel.width() - contentWidth) / 2);
    const bool rightToLeft = layoutDirection() == Qt::RightToLeft;
    const auto place = [&](double left, double width, double height) {
        const double mirrored = rightToLeft ? bezel.right() - (left - bezel.left()) - width : left;
        return QRectF(mirrored, bezel.center().y() - (height / 2), width, height);
    };

    const QColor color = textColor();
    if (lengths.symbolSide > 0) {
        symbols::paint(painter, place(x, lengths.symbolSide, lengths.symbolSide), symbol_, color);
        x += lengths.symbolSide + lengths.symbolGap;
    }
    painter.setPen(color);
    painter.setFont(font());
    const QString shown = titleWidth < lengths.titleWidth
                              ? QFontMetricsF(font()).elidedText(title_, Qt::ElideRight, titleWidth)
                              : title_;
    // A little wider than measured, so that no glyph is cut by rounding.
    painter.drawText(place(x, titleWidth, lengths.textHeight).adjusted(-1, 0, 1, 0),
                     Qt::AlignCenter | Qt::TextSingleLine, shown);
    x += titleWidth + lengths.chevronGap;
    if (lengths.chevronSide > 0)
        symbols::paint(painter, place(x, lengths.chevronSide, lengths.chevronSide),
                       QStringLiteral("chevron.down"), color);
    if (look::showsFocus(*this))
        paintFocus(painter, bezel, radius);
}

bool GlassButton::event(QEvent* event) {
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QAbstractButton::event(event);
}

void GlassButton::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter || (menu_ && event->key() == Qt::Key_Down))
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace tilewright
