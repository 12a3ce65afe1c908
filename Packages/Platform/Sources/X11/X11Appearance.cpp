#include "X11Appearance.h"

namespace tilewright {

X11Appearance::X11Appearance(const X11Compositor& compositor,
                             const X11ReducedMotion& screenReducedMotion,
                             const FreeDesktopAppearance& session)
    : compositor_(compositor)
    , screenReducedMotion_(screenReducedMotion)
    , session_(session) {
    connect(&screenReducedMotion_, &X11ReducedMotion::changed, this,
            &X11Appearance::updateReducedMotion);
    connect(&session_, &FreeDesktopAppearance::reducedMotionChanged, this,
            &X11Appearance::updateReducedMotion);
    connect(&session_, &FreeDesktopAppearance::darkChanged, this,
            &X11Appearance::prefersDarkChanged);
    updateReducedMotion();
}

void X11Appearance::updateReducedMotion() {
    const std::optional<bool> wish = combinedMotionWish(screenReducedMotion_.prefersReducedMotion(),
                                                        session_.prefersReducedMotion());
    if (wish == reducedMotion_)
        return;
    reducedMotion_ = wish;
    Q_EMIT prefersReducedMotionChanged();
}

} // namespace tilewright
