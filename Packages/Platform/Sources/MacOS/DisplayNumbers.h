#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <QString>
#include <optional>

namespace tilewright {

/// The display's number in its description, under "NSScreenNumber"; none where that entry is
/// missing or is no number, and for null. Borrows the description.
[[nodiscard]] std::optional<quint32> displayNumberIn(CFDictionaryRef deviceDescription);

/// The text of a display's persistent UUID, asked of the system afresh; none where the system knows
/// none for that display number.
[[nodiscard]] std::optional<QString> persistentUUIDOfDisplay(quint32 displayID);

} // namespace tilewright
