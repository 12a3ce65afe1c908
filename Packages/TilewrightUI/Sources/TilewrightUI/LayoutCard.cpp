#include "LayoutCard.h"

#include "ActionMenu.h"
#include "ContextMenuKey.h"
#include "FocusVisibility.h"
#include "Look.h"
#include "MiniLayoutPreview.h"
#include "SymbolView.h"
#include "TextLabel.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>
#include <QVBoxLayout>

namespace tilewright {

namespace {

constexpr int padding = 6;
constexpr int previewHeight = 42;
constexpr int badgeSide = 13;
constexpr int badgePadding = 3;
constexpr double cornerRadius = 8;

} // namespace

LayoutCard::LayoutCard(const ZoneLayout& layout, QWidget* parent)
    : AskingToggle(parent)
    , layout_(layout)
    , preview_(new MiniLayoutPreview(layout, this))
    , name_(new TextLabel(layout.name, look::TextStyle::caption2, TextLabel::Importance::primary,
                          this))
    , badge_(new SymbolView(badgeSide, this)) {
    // All cells of a row are of one width, however long the names in them.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    preview_->setFixedHeight(previewHeight);
    name_->setOverflow(TextLabel::Overflow::shrinkThenElide);
    name_->setAlignment(Qt::AlignCenter);
    name_->setAttribute(Qt::WA_TransparentForMouseEvents);
    badge_->setSymbol(
        QStringLiteral("checkmark.circle.fill"), [](const QPalette&) { return QColor(Qt::white); },
        [](const QPalette&) { return look::tilewrightAmber(); });
    badge_->hide();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(5);
    column->addWidget(preview_);
    column->addWidget(name_);
    connect(this, &QAbstractButton::toggled, this, [this] { badge_->setVisible(isOn()); });
    setZoneLayout(layout);
}

void LayoutCard::setZoneLayout(const ZoneLayout& layout) {
    layout_ = layout;
    preview_->setZoneLayout(layout);
    name_->setText(look::singleLine(layout.name));
    setAccessibleName(layout.name);
}

void LayoutCard::setPosition(std::size_t number, std::size_t count) {
    const QString position = tr("%1 of %2").arg(number).arg(count);
    if (accessibleDescription() != position)
        setAccessibleDescription(position);
}

QMenu* LayoutCard::makeContextMenu() {
    if (layout_.isBuiltIn)
        return nullptr;
    auto* menu = new ActionMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setAccessibleName(layout_.name);
    QAction* action = menu->addDestructiveAction(QStringLiteral("trash"), tr("Delete Layout"));
    connect(action, &QAction::triggered, this, &LayoutCard::deleteRequested);
    return menu;
}

void LayoutCard::contextMenuEvent(QContextMenuEvent* event) {
    // A press may be told of twice, by Qt and by the panel.
    if (const auto* open = QApplication::activePopupWidget(); open && open->parent() == this)
        return;
    QMenu* menu = makeContextMenu();
    if (!menu) {
        event->ignore();
        return;
    }
    const bool byKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    menu->popup(byKeyboard ? mapToGlobal(rect().center()) : event->globalPos());
    event->accept();
}

void LayoutCard::keyPressEvent(QKeyEvent* event) {
    if (openContextMenuByKey(*this, *event))
        return;
    const int forward = layoutDirection() == Qt::RightToLeft ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        Q_EMIT moveRequested(-forward, 0);
        return;
    case Qt::Key_Right:
        Q_EMIT moveRequested(forward, 0);
        return;
    case Qt::Key_Up:
        Q_EMIT moveRequested(0, -1);
        return;
    case Qt::Key_Down:
        Q_EMIT moveRequested(0, 1);
        return;
    default:
        AskingToggle::keyPressEvent(event);
    }
}

bool LayoutCard::event(QEvent* event) {
    if (event->type() == QEvent::LayoutDirectionChange)
        placeBadge();
    if (event->type() == QEvent::ToolTip && !name_->toolTipText().isEmpty()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), name_->toolTipText(),
                           this);
        return true;
    }
    return AskingToggle::event(event);
}

void LayoutCard::resizeEvent(QResizeEvent* event) {
    placeBadge();
    AskingToggle::resizeEvent(event);
}

void LayoutCard::placeBadge() {
    const int x =
        layoutDirection() == Qt::RightToLeft ? badgePadding : width() - badgePadding - badgeSide;
    badge_->move(x, badgePadding);
    badge_->raise();
}

void LayoutCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF shape(rect());
    painter.setPen(Qt::NoPen);
    if (isOn()) {
        painter.setBrush(look::accentFill());
        painter.drawRoundedRect(shape, cornerRadius, cornerRadius);
    } else if (isDown() || underMouse()) {
        painter.setBrush(look::withOpacity(look::quaternary(palette()), isDown() ? 1.0 : 0.5));
        painter.drawRoundedRect(shape, cornerRadius, cornerRadius);
    }
    const QColor border =
        isOn() ? look::tilewrightAmber() : look::withOpacity(look::secondary(palette()), 0.3);
    look::strokeInside(painter, shape, cornerRadius, border, isOn() ? 2 : 1);
    if (look::showsFocus(*this)) {
        // Inside the border, which says something else.
        look::paintFocusRing(painter, shape.adjusted(2, 2, -2, -2), cornerRadius - 2, palette());
    }
}

} // namespace tilewright
