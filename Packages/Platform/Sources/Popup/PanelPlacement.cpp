#include "PanelPlacement.h"

#include <algorithm>

namespace tilewright {

namespace {

/// Keeps a span inside [low, high]; the low end wins where it does not fit.
int clampSpan(int start, int length, int low, int high) {
    return std::max(std::min(start, high - length), low);
}

} // namespace

QtRect PanelPlacement::place(QSize panel) const {
    const QtPoint center = item.center();
    int x = center.x - panel.width() / 2;
    int y = center.y - panel.height() / 2;
    switch (barEdge()) {
    case Edge::top:
        y = item.maxY() + gap;
        break;
    case Edge::bottom:
        y = item.y - gap - panel.height();
        break;
    case Edge::left:
        x = item.maxX() + gap;
        break;
    case Edge::right:
        x = item.x - gap - panel.width();
        break;
    }
    return {
        clampSpan(x, panel.width(), visibleFrame.x + gap, visibleFrame.maxX() - gap),
        clampSpan(top.value_or(y), panel.height(), visibleFrame.y + gap, visibleFrame.maxY() - gap),
        panel.width(), panel.height()};
}

PanelPlacement::Edge PanelPlacement::barEdge() const {
    const QtPoint center = item.center();
    if (center.y < visibleFrame.y)
        return Edge::top;
    if (center.y >= visibleFrame.maxY())
        return Edge::bottom;
    if (center.x < visibleFrame.x)
        return Edge::left;
    if (center.x >= visibleFrame.maxX())
        return Edge::right;
    // In a bar that reserves no space, or in none: above or below, where there is more room.
    return center.y - frame.y <= frame.height / 2 ? Edge::top : Edge::bottom;
}

} // namespace tilewright
