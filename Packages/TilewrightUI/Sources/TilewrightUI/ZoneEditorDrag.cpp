#include "ZoneEditorDrag.h"

#include <cmath>

namespace tilewright {

ZoneEditorDrag::ZoneEditorDrag(LayoutEditorModel& model, std::size_t index,
                               std::optional<Corner> corner)
    : model_(model)
    , index_(index)
    , corner_(corner)
    , zoneID_(index < model.zones().size() ? model.zones()[index].id : QUuid()) {}

void ZoneEditorDrag::changed(QPointF translation, QSizeF canvasSize) {
    if (!isZoneThere() || canvasSize.isEmpty())
        return;
    if (!dragStartZone_) {
        if (std::hypot(translation.x(), translation.y()) < minimumDistance)
            return;
        dragStartZone_ = model_.zones()[index_];
        model_.select(dragStartZone_->id);
    }
    const ZoneEditorGeometry geometry = model_.geometryFor(index_);
    const double dx = translation.x() / canvasSize.width();
    const double dy = translation.y() / canvasSize.height();
    model_.setZone(index_, corner_ ? geometry.resized(*dragStartZone_, *corner_, dx, dy)
                                   : geometry.moved(*dragStartZone_, dx, dy));
}

bool ZoneEditorDrag::isZoneThere() const {
    // Another layout may have been loaded with the button held.
    return index_ < model_.zones().size() && model_.zones()[index_].id == zoneID_;
}

void ZoneEditorDrag::cancel() {
    if (dragStartZone_ && isZoneThere())
        model_.setZone(index_, *dragStartZone_);
    dragStartZone_.reset();
}

} // namespace tilewright
