#pragma once

#include "X11Compositor.h"
#include "X11ReducedMotion.h"

#include <FreeDesktop/FreeDesktopAppearance.h>
#include <Platform/Appearance.h>

namespace tilewright {

/// What the compositing manager, the settings of the X screen and the desktop portal tell of how
/// programs should look. Main thread only; the arguments have to outlive it.
class X11Appearance final : public Appearance {
    Q_OBJECT

public:
    X11Appearance(const X11Compositor& compositor, const X11ReducedMotion& screenReducedMotion,
                  const FreeDesktopAppearance& session);

    bool blendsWindows() const override { return compositor_.isRunning(); }
    std::optional<bool> prefersReducedMotion() const override { return reducedMotion_; }
    bool prefersDark() const override { return session_.prefersDark(); }

private:
    void updateReducedMotion();

    const X11Compositor& compositor_;
    const X11ReducedMotion& screenReducedMotion_;
    const FreeDesktopAppearance& session_;
    std::optional<bool> reducedMotion_;
};

} // namespace tilewright
