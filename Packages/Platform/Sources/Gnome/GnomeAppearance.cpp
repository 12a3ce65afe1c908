#include "GnomeAppearance.h"

namespace tilewright {

GnomeAppearance::GnomeAppearance(MessageBus& bus)
    : session_(bus) {
    connect(&session_, &FreeDesktopAppearance::reducedMotionChanged, this,
            &Appearance::prefersReducedMotionChanged);
    connect(&session_, &FreeDesktopAppearance::darkChanged, this, &Appearance::prefersDarkChanged);
}

GnomeAppearance::~GnomeAppearance() = default;

} // namespace tilewright
