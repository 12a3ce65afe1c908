#include "PortalAppearance.h"

namespace tilewright {

PortalAppearance::PortalAppearance(MessageBus& bus)
    : session_(bus) {
    connect(&session_, &FreeDesktopAppearance::reducedMotionChanged, this,
            &Appearance::prefersReducedMotionChanged);
    connect(&session_, &FreeDesktopAppearance::darkChanged, this, &Appearance::prefersDarkChanged);
}

PortalAppearance::~PortalAppearance() = default;

} // namespace tilewright
