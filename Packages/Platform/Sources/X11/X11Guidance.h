#pragma once

#include "X11Trust.h"

#include <FreeDesktop/FreeDesktopGuidance.h>

namespace tilewright {

/// What the user is shown about something that this desktop lacks.
[[nodiscard]] FreeDesktopGuidance::Topic guidanceFor(X11Trust::Lack lack);

} // namespace tilewright
