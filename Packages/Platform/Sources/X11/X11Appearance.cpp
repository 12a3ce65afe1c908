#include "X11Appearance.h"

namespace tilewright {

X11Appearance::X11Appearance(const X11Compositor& compositor, const X11MotionWish& screenMotionWish,
                             const FreeDesktopAppearance& session)
    : compositor_(compositor)
    , screenMotionWish_(screenMotionWish)
    , session_(session) {
    connect(&screenMotionWish_, &X11MotionWish::changed, this, &X11Appearance::updateReducedMotion);
    connect(&session_, &FreeDesktopAppearance::reducedMotionChanged, this,
            &X11Appearance::updateReducedMotion);
    connect(&session_, &FreeDesktopAppearance::darkChanged, this,
            &X11Appearance::prefersDarkChanged);
    updateReducedMotion();
}

void X11Appearance::updateReducedMotion() {
    const std::optional<bool> wish = combinedMotionWish(screenMotionWish_.prefersReducedMotion(),
                                                        session_.prefersReducedMotion());
    if (wish == reducedMotion_)
        return;
    reducedMotion_ = wish;
    Q_EMIT prefersReducedMotionChanged();
}

} // namespace tilewright
