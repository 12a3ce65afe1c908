#include "MacStatusItem.h"

#include "AppKitStatusItem.h"

#include <QBuffer>
#include <QIcon>
#include <QPixmap>

namespace tilewright {

namespace {

/// The side of a menu bar symbol, in points.
constexpr int symbolSide = 18;

} // namespace

MacStatusItem::MacStatusItem()
    : item_(appkit::addStatusItem([this] { Q_EMIT activated(item_->frame()); })) {}

MacStatusItem::~MacStatusItem() = default;

void MacStatusItem::setSymbol(const QString& /*symbolName*/, const QIcon& icon) {
    // Twice the size in pixels, so that it is crisp on every screen.
    const QPixmap pixmap = icon.pixmap(QSize(symbolSide, symbolSide) * 2);
    QByteArray encoded;
    QBuffer buffer(&encoded);
    pixmap.save(&buffer, "PNG");
    item_->setTemplateImage(encoded, symbolSide);
}

void MacStatusItem::setAccessibleName(const QString& name) {
    item_->setAccessibleName(name);
}

void MacStatusItem::setHighlighted(bool isHighlighted) {
    item_->setHighlighted(isHighlighted);
}

} // namespace tilewright
