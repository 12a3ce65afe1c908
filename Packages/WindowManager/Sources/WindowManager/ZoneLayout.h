#pragma once

#include "Zone.h"

#include <optional>
#include <vector>

namespace tilewright {

/// A named, ordered set of zones. A later zone lies above an earlier one.
struct ZoneLayout {
    QUuid id;
    QString name;
    /// The name of the symbol that stands for the layout in menus.
    QString systemImage;
    /// True for the five presets only.
    bool isBuiltIn;
    std::vector<Zone> zones;

    /// The topmost zone at the point; all four edges belong to a zone. None where no zone is.
    [[nodiscard]] std::optional<Zone> zoneAtNormalized(NormalizedPoint point) const;

    /// The presets. Their ids are the same in every run, their zones' ids fresh in each run and
    /// stable within one.
    [[nodiscard]] static const ZoneLayout& halves();
    [[nodiscard]] static const ZoneLayout& thirds();
    [[nodiscard]] static const ZoneLayout& quadrants();
    [[nodiscard]] static const ZoneLayout& priorityCenter();
    [[nodiscard]] static const ZoneLayout& bentoBox();
    /// The five presets in the order above, in which they are listed everywhere.
    [[nodiscard]] static const std::vector<ZoneLayout>& builtIns();

    /// Compares field by field in the order of declaration.
    friend bool operator==(const ZoneLayout&, const ZoneLayout&) = default;
};

} // namespace tilewright
