#pragma once

#include <WindowManager/ZoneLayout.h>

namespace tilewright {

/// The id that all sample layouts share.
[[nodiscard]] QUuid sampleLayoutID();

/// A layout that follows from its number: the same in every process, another for each number, of
/// a size that varies from nothing to some tens of kilobytes.
[[nodiscard]] ZoneLayout sampleLayout(int number);

} // namespace tilewright
