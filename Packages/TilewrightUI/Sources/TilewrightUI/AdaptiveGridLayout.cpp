#include "AdaptiveGridLayout.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace tilewright {

AdaptiveGridLayout::AdaptiveGridLayout(int minimumColumnWidth, int spacing, QWidget* parent)
    : QLayout(parent)
    , minimumColumnWidth_(minimumColumnWidth) {
    setContentsMargins(0, 0, 0, 0);
    setSpacing(spacing);
}

AdaptiveGridLayout::~AdaptiveGridLayout() {
    qDeleteAll(items_);
}

int AdaptiveGridLayout::columnCount(int width) const {
    return std::max(1, (width + spacing()) / (minimumColumnWidth_ + spacing()));
}

void AdaptiveGridLayout::addItem(QLayoutItem* item) {
    items_.push_back(item);
}

QLayoutItem* AdaptiveGridLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem* AdaptiveGridLayout::takeAt(int index) {
    QLayoutItem* item = itemAt(index);
    if (item)
        items_.erase(items_.begin() + index);
    return item;
}

int AdaptiveGridLayout::heightForWidth(int width) const {
    return arrange(QRect(0, 0, width, 0), Pass::measure);
}

QSize AdaptiveGridLayout::sizeHint() const {
    return {minimumColumnWidth_, heightForWidth(minimumColumnWidth_)};
}

QSize AdaptiveGridLayout::minimumSize() const {
    return {minimumColumnWidth_, 0};
}

bool AdaptiveGridLayout::isEmpty() const {
    return false;
}

Qt::Orientations AdaptiveGridLayout::expandingDirections() const {
    return Qt::Horizontal;
}

void AdaptiveGridLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    arrange(rect, Pass::place);
}

int AdaptiveGridLayout::arrange(const QRect& rect, Pass pass) const {
    const int columns = columnCount(rect.width());
    const double width =
        (rect.width() - (static_cast<double>(spacing()) * (columns - 1))) / columns;
    const auto direction =
        parentWidget() ? parentWidget()->layoutDirection() : Qt::LayoutDirectionAuto;
    int top = rect.top();
    int rowHeight = 0;
    for (int i = 0; i < count(); ++i) {
        const int column = i % columns;
        if (i > 0 && column == 0) {
            top += rowHeight + spacing();
            rowHeight = 0;
        }
        // Edges are rounded, not widths, so that the last column ends at the edge.
        const int left = qRound(column * (width + spacing()));
        const int right = qRound((column * (width + spacing())) + width);
        QLayoutItem* item = items_[static_cast<std::size_t>(i)];
        const int height = item->hasHeightForWidth() ? item->heightForWidth(right - left)
                                                     : item->sizeHint().height();
        rowHeight = std::max(rowHeight, height);
        if (pass == Pass::place) {
            const QRect cell(rect.left() + left, top, right - left, height);
            item->setGeometry(QStyle::visualRect(direction, rect, cell));
        }
    }
    return top + rowHeight - rect.top();
}

} // namespace tilewright
