#pragma once

#include "X11Compositor.h"
#include "X11Screens.h"

#include <Platform/Lifetime.h>
#include <Platform/OverlaySurface.h>

#include <memory>

namespace tilewright {

/// An override-redirect window with per-pixel transparency and an empty input shape: it stays above
/// fullscreen windows, takes no focus, and lets clicks and a window manager's drag through. Where
/// nothing blends windows it is cut to the view's outline instead.
///
/// The window is made at once and kept; its pixels are kept only while it is shown.
class X11OverlaySurface final : public OverlaySurface {
public:
    /// All but the view have to outlive the surface.
    X11OverlaySurface(X11Connection& connection, X11Compositor& compositor,
                      const X11Screens& screens, std::shared_ptr<OverlayView> view);
    ~X11OverlaySurface() override;

    void setScreen(const ScreenPtr& screen) override;
    void orderFront() override;
    void orderOut() override;

private:
    class Container;

    void place();
    void follow(const X11Compositor& compositor);
    void applyAreas();
    void setBlur(const QRegion& region);
    void readBlurOffer();
    void releasePixels();
    [[nodiscard]] xcb_window_t window() const;

    X11Connection& connection_;
    const X11Screens& screens_;
    std::shared_ptr<OverlayView> view_;
    std::unique_ptr<Container> container_;
    QMetaObject::Connection following_;
    OverlayRendering rendering_ = OverlayRendering::translucent;
    ScreenPtr screen_;
    X11AwaitedReply blurOffer_;
    bool isBlurOffered_ = false;
    bool hasBlur_ = false;
    Lifetime life_;
};

} // namespace tilewright
