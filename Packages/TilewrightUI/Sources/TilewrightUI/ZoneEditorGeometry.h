#pragma once

#include <WindowManager/Zone.h>

#include <QString>
#include <array>
#include <optional>
#include <vector>

namespace tilewright {

/// The rules by which one zone of the layout editor is moved and resized among the others.
///
/// Everything is in normalized zone space. Pure functions of their arguments and of the fields: a
/// drag is always computed from the zone as it was when the drag began plus the whole way since.
/// The order of the operations, and which comparisons are strict, are part of the rules.
struct ZoneEditorGeometry {
    enum class Corner { topLeft, topRight, bottomLeft, bottomRight };
    static constexpr std::array<Corner, 4> allCorners{Corner::topLeft, Corner::topRight,
                                                      Corner::bottomLeft, Corner::bottomRight};

    /// Smallest width and height that resizing leaves.
    static constexpr double defaultMinSize = 0.05;
    /// How near a line has to be to attract an edge.
    static constexpr double defaultSnapThreshold = 0.025;
    /// By how much two zones may overlap and still count as merely touching.
    static constexpr double defaultEps = 0.0005;

    /// The other zones of the layout, in layout order.
    std::vector<Zone> others;
    bool snapToEdges = true;
    double minSize = defaultMinSize;
    double snapThreshold = defaultSnapThreshold;
    double eps = defaultEps;

    /// Where vertical edges snap: the canvas edges, then each other zone's left and right edge.
    [[nodiscard]] std::vector<double> verticalLines() const;
    /// Where horizontal edges snap: the canvas edges, then each other zone's top and bottom edge.
    [[nodiscard]] std::vector<double> horizontalLines() const;

    /// The position of the segment [value, value + span] after either of its ends has been drawn to
    /// the nearest line; `value` where no line is near enough or snapping is off. A line exactly at
    /// the threshold attracts nothing; the first of equally near lines wins, and for one line the
    /// segment's start.
    [[nodiscard]] double snapEdge(double value, double span,
                                  const std::vector<double>& lines) const;

    /// The zone moved by the delta: held inside the canvas, snapped, and stopped at neighbours in
    /// its way. Size, id and name stay.
    [[nodiscard]] Zone moved(const Zone& start, double dx, double dy) const;

    /// The zone with one corner dragged by the delta: held inside the canvas, snapped, stopped at
    /// neighbours, and never smaller than `minSize`, which may take it slightly past the canvas.
    [[nodiscard]] Zone resized(const Zone& start, Corner corner, double dx, double dy) const;

    /// A fraction as a whole percentage, halves rounded away from zero: 0.335 gives "34%".
    [[nodiscard]] static QString pct(double value);
};

} // namespace tilewright
