#pragma once

#include "ZoneEditorGeometry.h"

#include <optional>
#include <vector>

namespace tilewright {

/// Where the layout editor puts a new zone: the first free place for the largest size that fits.
///
/// Seven sizes are tried, from the left half of the canvas down to a square of `minZoneSize`; each
/// is scanned row by row from the top, left to right, in steps of 0.05. Zones that overlap a place
/// by no more than the editor's tolerance do not block it. The result is in normalized zone space
/// and has a fresh id and an empty name; none when no size fits anywhere.
[[nodiscard]] std::optional<Zone> freeSlot(const std::vector<Zone>& zones,
                                           double minZoneSize = ZoneEditorGeometry::defaultMinSize);

} // namespace tilewright
