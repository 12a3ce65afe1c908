#include "PanelPlacement.h"

#include <algorithm>

namespace tilewright {

namespace {

/// Keeps a span inside [low, high]; the low end wins where it does not fit.
int clampSpan(int start, int length, int low, int high) {
    return std::max(std::min(start, high - length), low);
}

} // namespace

QPoint PanelPlacement::topLeft(QSize panel) const {
    const QRect area = visibleFrame.adjusted(gap, gap, -gap, -gap);
    const int itemRight = item.x() + item.width();
    const int itemBottom = item.y() + item.height();
    QPoint corner(item.x() + item.width() / 2 - panel.width() / 2,
                  item.y() + item.height() / 2 - panel.height() / 2);
    switch (barEdge()) {
    case Edge::top:
        corner.setY(itemBottom + gap);
        break;
    case Edge::bottom:
        corner.setY(item.y() - gap - panel.height());
        break;
    case Edge::left:
        corner.setX(itemRight + gap);
        break;
    case Edge::right:
        corner.setX(item.x() - gap - panel.width());
        break;
    }
    return {clampSpan(corner.x(), panel.width(), area.x(), area.x() + area.width()),
            clampSpan(corner.y(), panel.height(), area.y(), area.y() + area.height())};
}

PanelPlacement::Edge PanelPlacement::barEdge() const {
    const QPoint center(item.x() + item.width() / 2, item.y() + item.height() / 2);
    const int visibleRight = visibleFrame.x() + visibleFrame.width();
    const int visibleBottom = visibleFrame.y() + visibleFrame.height();
    if (center.y() < visibleFrame.y())
        return Edge::top;
    if (center.y() >= visibleBottom)
        return Edge::bottom;
    if (center.x() < visibleFrame.x())
        return Edge::left;
    if (center.x() >= visibleRight)
        return Edge::right;
    // In a bar that reserves no space, or in none: above or below, where there is more room.
    return center.y() - frame.y() <= frame.height() / 2 ? Edge::top : Edge::bottom;
}

} // namespace tilewright
