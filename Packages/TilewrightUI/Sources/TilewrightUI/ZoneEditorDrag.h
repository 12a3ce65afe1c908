#pragma once

#include "LayoutEditorModel.h"

#include <QPointF>
#include <QSizeF>

namespace tilewright {

/// One drag of a zone, or of one of its corners, from press to release.
///
/// It begins once the pointer is 10 points away from where it was pressed, and then follows it,
/// also back. Each step is computed from the zone as it was when the drag began plus the whole way
/// since, so that snapping adds up no error. It follows the zone by its place in the model's list,
/// as long as the same zone is there.
class ZoneEditorDrag {
public:
    using Corner = ZoneEditorGeometry::Corner;

    /// In points of the canvas.
    static constexpr double minimumDistance = 10;

    /// Without a corner the whole zone is moved. The model has to outlive the drag.
    ZoneEditorDrag(LayoutEditorModel& model, std::size_t index, std::optional<Corner> corner);

    /// The pointer is this far from where it was pressed, on a canvas of this size, both in points.
    /// The first change of a drag selects the zone.
    void changed(QPointF translation, QSizeF canvasSize);
    /// Puts the zone back where the drag found it.
    void cancel();

    /// Whether the pointer has gone far enough for a drag; until then it is a tap.
    [[nodiscard]] bool hasBegun() const { return dragStartZone_.has_value(); }
    [[nodiscard]] std::size_t index() const { return index_; }
    [[nodiscard]] std::optional<Corner> corner() const { return corner_; }

private:
    [[nodiscard]] bool isZoneThere() const;

    LayoutEditorModel& model_;
    const std::size_t index_;
    const std::optional<Corner> corner_;
    const QUuid zoneID_;
    std::optional<Zone> dragStartZone_;
};

} // namespace tilewright
