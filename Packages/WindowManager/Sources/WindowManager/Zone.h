#pragma once

#include "ZoneRect.h"

#include <Platform/Screens.h>

#include <QString>
#include <QUuid>

namespace tilewright {

/// A point in normalized zone space: fractions of one display's visible frame, origin at its
/// top-left corner, y downward.
struct NormalizedPoint {
    double x = 0;
    double y = 0;

    friend bool operator==(const NormalizedPoint&, const NormalizedPoint&) = default;
};

/// One snap target of a layout, in normalized zone space. Any numbers are accepted: keeping zones
/// inside the unit square is the editor's business.
struct Zone {
    QUuid id;
    QString name;
    double x;
    double y;
    double width;
    double height;

    /// The zone's frame on a display, inside its visible frame. Neither rounded nor clipped.
    [[nodiscard]] ZoneRect axRect(const Screen& screen) const;

    /// Compares field by field in the order of declaration: zones of the same place and name but of
    /// different ids differ.
    friend bool operator==(const Zone&, const Zone&) = default;
};

} // namespace tilewright
