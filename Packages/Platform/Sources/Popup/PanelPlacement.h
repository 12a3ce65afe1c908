#pragma once

#include <Platform/QtSpace.h>

#include <QSize>
#include <optional>

namespace tilewright {

/// Where a panel opens: beside an item of a bar, on the inner side of the bar. Sizes are in Qt's
/// points.
struct PanelPlacement {
    /// The item, or an empty rectangle at the point that is known of it.
    QtRect item;
    /// The whole screen that the panel belongs to.
    QtRect frame;
    /// The screen less its bars.
    QtRect visibleFrame;
    /// The top edge of a panel that is open already, which it keeps.
    std::optional<int> top = std::nullopt;

    /// The place of a panel of that size. It is wholly inside the visible frame if it fits there at
    /// all; else its top-left corner is.
    [[nodiscard]] QtRect place(QSize panel) const;

    /// How far the panel keeps from the item and from the visible frame's edges.
    static constexpr int gap = 4;

private:
    enum class Edge { top, bottom, left, right };
    [[nodiscard]] Edge barEdge() const;
};

} // namespace tilewright
