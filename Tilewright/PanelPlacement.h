#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace tilewright {

/// Where a panel opens: beside an item of a bar, on the inner side of the bar.
///
/// All lengths are in one unit, which the caller chooses; rectangles are of one desktop.
struct PanelPlacement {
    /// The item, or an empty rectangle at the point that is known of it.
    QRect item;
    /// The whole screen that the panel belongs to.
    QRect frame;
    /// The screen less its bars.
    QRect visibleFrame;

    /// The panel's top-left corner. The panel is wholly inside the visible frame if it fits there
    /// at all; else its top-left corner is.
    [[nodiscard]] QPoint topLeft(QSize panel) const;

    /// How far the panel keeps from the item and from the visible frame's edges.
    static constexpr int gap = 4;

private:
    enum class Edge { top, bottom, left, right };
    [[nodiscard]] Edge barEdge() const;
};

} // namespace tilewright
