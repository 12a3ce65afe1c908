#pragma once

#include <Platform/QtSpace.h>

#include <QMargins>
#include <QSize>
#include <algorithm>
#include <optional>

namespace tilewright {

/// Where a panel opens: beside an item of a bar, on the inner side of the bar. `Rect` is a
/// rectangle of the space that all of this is in, whose y goes downward.
template<class Rect>
struct PanelPlacementIn {
    using Length = decltype(Rect::x);

    /// The item, or an empty rectangle at the point that is known of it.
    Rect item;
    /// The whole screen that the panel belongs to.
    Rect frame;
    /// The screen less its bars.
    Rect visibleFrame;
    /// How long a point of Qt's is in this space.
    Length unit = 1;

    /// How far the panel keeps from the item and from the visible frame's edges, in Qt's points.
    static constexpr int gap = 4;

    /// The height that there is room for, in Qt's points; at least one.
    [[nodiscard]] int availableHeight() const {
        return std::max(points(visibleFrame.height) - 2 * gap, 1);
    }

    /// The place of a panel of that size, in Qt's points. It is wholly inside the visible frame if
    /// it fits there at all; else its top-left corner is.
    [[nodiscard]] Rect place(QSize panel) const {
        const Length width = panel.width() * unit;
        const Length height = panel.height() * unit;
        const Length space = gap * unit;
        Length x = item.x + item.width / 2 - width / 2;
        Length y = item.y + item.height / 2 - height / 2;
        switch (barEdge()) {
        case Edge::top:
            y = item.y + item.height + space;
            break;
        case Edge::bottom:
            y = item.y - space - height;
            break;
        case Edge::left:
            x = item.x + item.width + space;
            break;
        case Edge::right:
            x = item.x - space - width;
            break;
        }
        return {insideSpan(x, width, visibleFrame.x, visibleFrame.width),
                insideSpan(y, height, visibleFrame.y, visibleFrame.height), width, height};
    }

    /// How much there is around a panel's place inside the visible frame, in Qt's points: a
    /// compositor may let no part of a window out of it, not even of its shadow.
    [[nodiscard]] QMargins roomAround(const Rect& panel) const {
        return {points(panel.x - visibleFrame.x), points(panel.y - visibleFrame.y),
                points(visibleFrame.x + visibleFrame.width - panel.x - panel.width),
                points(visibleFrame.y + visibleFrame.height - panel.y - panel.height)};
    }

private:
    enum class Edge { top, bottom, left, right };

    [[nodiscard]] Edge barEdge() const {
        const Length x = item.x + item.width / 2;
        const Length y = item.y + item.height / 2;
        if (y < visibleFrame.y)
            return Edge::top;
        if (y >= visibleFrame.y + visibleFrame.height)
            return Edge::bottom;
        if (x < visibleFrame.x)
            return Edge::left;
        if (x >= visibleFrame.x + visibleFrame.width)
            return Edge::right;
        // In a bar that reserves no space, or in none: above or below, where there is more room.
        return y - frame.y <= frame.height / 2 ? Edge::top : Edge::bottom;
    }

    /// Keeps a span the gap away from the ends of another; the low end wins where it does not fit.
    [[nodiscard]] Length insideSpan(Length start, Length length, Length low, Length whole) const {
        const Length space = gap * unit;
        return std::max(std::min(start, low + whole - space - length), low + space);
    }

    /// As many whole points as there are in that; none where it is less than nothing.
    [[nodiscard]] int points(Length length) const {
        return std::max(static_cast<int>(length / unit), 0);
    }
};

/// The same among widgets.
using PanelPlacement = PanelPlacementIn<QtRect>;

/// Keeps the top edge of an open panel where it is while its content changes its height, as far as
/// that was foreseen. Higher than that the panel is placed anew: it does not grow over its item.
class PanelGrowth {
public:
    /// The place of a panel of that size that may yet become so much higher, in Qt's points.
    template<class Rect>
    [[nodiscard]] Rect place(const PanelPlacementIn<Rect>& placement, QSize panel, int roomToGrow) {
        if (!foreseenHeight_ || panel.height() > *foreseenHeight_)
            foreseenHeight_ = panel.height() + roomToGrow;
        Rect place = placement.place(panel);
        place.y = placement.place({panel.width(), *foreseenHeight_}).y;
        return place;
    }
    /// To be called once the panel belongs elsewhere: where it opens, and on other displays.
    void reset() { foreseenHeight_.reset(); }

private:
    std::optional<int> foreseenHeight_;
};

} // namespace tilewright
