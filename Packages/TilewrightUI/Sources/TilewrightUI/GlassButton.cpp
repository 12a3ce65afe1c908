#include "GlassButton.h"

#include "Contrast.h"
#include "FocusVisibility.h"
#include "Symbols.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <cmath>

namespace tilewright {

namespace {

constexpr double symbolGap = 5;
constexpr double chevronGap = 4;

} // namespace

GlassButton::GlassButton(const QString& title, Kind kind, QWidget* parent)
    : QPushButton(parent)
    , kind_(kind) {
    // Only such buttons answer to Enter as well.
    setAutoDefault(true);
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

/// Between the content and each side.
QSizeF GlassButton::padding() const {
    if (kind_ == Kind::plain)
        return {0, 0};
    return size_ == ControlSize::small ? QSizeF(8, 1.5) : QSizeF(10, 3);
}

double GlassButton::symbolRoom() const {
    return symbol_.isEmpty() ? 0 : std::round(QFontMetricsF(font()).ascent() * 0.95) + symbolGap;
}

double GlassButton::chevronRoom() const {
    return menu() ? std::round(QFontMetricsF(font()).ascent() * 0.7) + chevronGap : 0;
}

QSize GlassButton::sizeHint() const {
    const QFontMetricsF text(font());
    const double content = symbolRoom() + text.horizontalAdvance(title_) + chevronRoom();
    return {static_cast<int>(std::ceil(content + (2 * padding().width()))),
            static_cast<int>(std::ceil(text.height() + (2 * padding().height())))};
}

QSize GlassButton::minimumSizeHint() const {
    const QSize hint = sizeHint();
    if (kind_ != Kind::bordered)
        return hint;
    return {std::min(hint.width(), 60), hint.height()};
}

QColor GlassButton::bezelColor() const {
    if (kind_ == Kind::prominent) {
        const QColor fill = look::tilewrightAmber();
        return isDown() ? fill.darker(115) : underMouse() ? fill.lighter(106) : fill;
    }
    const double base = look::isDark(palette()) ? 0.18 : 0.14;
    const double more = isDown() ? 0.14 : underMouse() ? 0.06 : 0;
    return look::withOpacity(look::red(palette()), base + more);
}

QColor GlassButton::textColor() const {
    if (kind_ == Kind::prominent)
        return look::textOnAmber(bezelColor());
    if (role_ == Role::destructive) {
        const QColor window = look::panelFill(palette());
        const QColor card = look::over(look::cardFill(palette()), window);
        return look::legible(look::red(palette()),
                             {look::over(bezelColor(), window), look::over(bezelColor(), card)});
    }
    if (kind_ == Kind::plain && !underMouse())
        return look::secondary(palette());
    return look::primary(palette());
}

void GlassButton::paintBezel(QPainter& painter, const QRectF& bezel, double radius) const {
    if (kind_ == Kind::prominent || (role_ == Role::destructive && kind_ != Kind::plain)) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(bezelColor());
        painter.drawRoundedRect(bezel, radius, radius);
    } else if (kind_ != Kind::plain) {
        look::paintGlass(painter, bezel, radius, palette(), {isEnabled(), underMouse(), isDown()});
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

    const QFontMetricsF text(font());
    const double others = symbolRoom() + chevronRoom();
    const double room = bezel.width() - (2 * padding().width()) - others;
    const QString shown = text.elidedText(title_, Qt::ElideRight, std::max(room, 0.0));
    const double inset = (bezel.width() - others - text.horizontalAdvance(shown)) / 2;
    QRectF content = bezel.adjusted(inset, 0, -inset, 0);
    painter.setPen(textColor());
    painter.setFont(font());
    if (menu()) {
        const double side = chevronRoom() - chevronGap;
        QRectF chevron(content.right() - side, content.center().y() - (side / 2), side, side);
        content.setRight(chevron.left() - chevronGap);
        if (layoutDirection() == Qt::RightToLeft) {
            content.moveRight(chevron.right());
            chevron.moveLeft(bezel.left() + inset);
        }
        symbols::paint(painter, chevron, QStringLiteral("chevron.down"), textColor());
    }
    symbols::paintLabel(painter, content, layoutDirection(), symbol_, symbolRoom() - symbolGap,
                        symbolGap, shown);
    if (look::showsFocus(*this))
        paintFocus(painter, bezel, radius);
}

void GlassButton::setMenu(QMenu* menu) {
    QPushButton::setMenu(menu);
    // Qt would run an event loop of its own for as long as the menu is open.
    disconnect(this, SIGNAL(pressed()), this, nullptr);
    connect(this, &QAbstractButton::pressed, this, &GlassButton::popUpMenu);
    connect(menu, &QMenu::aboutToHide, this, [this] { setDown(false); });
}

void GlassButton::popUpMenu() {
    const QPoint below = mapToGlobal(QPoint(0, height() + 2));
    menu()->popup(below);
    if (layoutDirection() != Qt::RightToLeft)
        return;
    // Only now is the menu filled, and its width known.
    const int left = screen()->availableGeometry().left();
    menu()->move(std::max(below.x() + width() - menu()->width(), left), menu()->y());
}

void GlassButton::keyPressEvent(QKeyEvent* event) {
    if (menu() && event->key() == Qt::Key_Down)
        click();
    else
        QPushButton::keyPressEvent(event);
}

} // namespace tilewright
