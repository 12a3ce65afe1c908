#include "SnapOverlayModel.h"

namespace tilewright {

SnapOverlayModel::SnapOverlayModel(ZoneLayout layout, std::optional<QUuid> highlightedZoneID)
    : layout_(*this, std::move(layout))
    , highlightedZoneID_(*this, highlightedZoneID) {}

SnapOverlayModel::~SnapOverlayModel() = default;

} // namespace tilewright
