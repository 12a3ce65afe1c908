#include "CompanionAppearance.h"

#include <utility>

namespace tilewright {

CompanionAppearance::CompanionAppearance(MessageBus& bus, const CompanionState& state)
    : state_(state)
    , portal_(bus) {
    connect(&portal_, &FreeDesktopAppearance::reducedMotionChanged, this,
            &CompanionAppearance::weighMotion);
    connect(&state_, &CompanionState::reducedMotionTold, this, &CompanionAppearance::weighMotion);
    connect(&portal_, &FreeDesktopAppearance::darkChanged, this, &Appearance::prefersDarkChanged);
}

CompanionAppearance::~CompanionAppearance() = default;

void CompanionAppearance::weighMotion() {
    const std::optional<bool> told = portal_.prefersReducedMotion();
    const std::optional<bool> now = told ? told : state_.prefersReducedMotion();
    if (std::exchange(reduced_, now) != now)
        Q_EMIT prefersReducedMotionChanged();
}

} // namespace tilewright
