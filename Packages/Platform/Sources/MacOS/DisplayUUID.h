#pragma once

#include <QString>
#include <optional>

namespace tilewright {

/// The text of a display's persistent UUID, asked of the system afresh; none where the system knows
/// none for that display id.
[[nodiscard]] std::optional<QString> persistentUUIDOfDisplay(quint32 displayID);

} // namespace tilewright
