#include "LayoutManagerCard.h"

#include "GlassButton.h"
#include "HitArea.h"
#include "Look.h"
#include "MiniLayoutPreview.h"
#include "NameAndCount.h"

#include <QPainter>
#include <QVBoxLayout>

namespace tilewright {

namespace {

constexpr int padding = 10;
constexpr int previewHeight = 70;
constexpr double cornerRadius = 10;

} // namespace

LayoutManagerCard::LayoutManagerCard(const ZoneLayout& layout, Deletable deletable, QWidget* parent)
    : QWidget(parent)
    , layout_(layout)
    , preview_(new MiniLayoutPreview(layout, this))
    , texts_(new NameAndCount(this)) {
    preview_->setFixedHeight(previewHeight);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(6);
    column->addWidget(preview_);
    column->addWidget(texts_);
    if (deletable == Deletable::yes) {
        deleteButton_ = new GlassButton(tr("Delete"), GlassButton::Kind::bordered, this);
        deleteButton_->setSymbol(QStringLiteral("trash"));
        deleteButton_->setRole(GlassButton::Role::destructive);
        deleteButton_->setControlSize(GlassButton::ControlSize::small);
        connect(deleteButton_, &QAbstractButton::clicked, this,
                &LayoutManagerCard::deleteRequested);
        column->addWidget(deleteButton_);
        new HitArea(deleteButton_, this);
    }
    setZoneLayout(layout);
}

void LayoutManagerCard::setZoneLayout(const ZoneLayout& layout) {
    layout_ = layout;
    preview_->setZoneLayout(layout);
    texts_->setTexts(look::singleLine(layout.name), countText());
    setAccessibleName(layout.name);
    if (deleteButton_)
        deleteButton_->setAccessibleName(tr("Delete %1").arg(layout.name));
}

void LayoutManagerCard::setPosition(std::size_t number, std::size_t count) {
    const QString position = tr("%1 of %2").arg(number).arg(count);
    if (accessibleDescription() != position)
        setAccessibleDescription(position);
}

QString LayoutManagerCard::countText() const {
    // One text for every number, also for one.
    return tr("%1 zones").arg(layout_.zones.size());
}

void LayoutManagerCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::cardFill(palette()));
    painter.drawRoundedRect(QRectF(rect()), cornerRadius, cornerRadius);
    look::strokeInside(painter, QRectF(rect()), cornerRadius, look::separator(palette()), 1);
}

} // namespace tilewright
