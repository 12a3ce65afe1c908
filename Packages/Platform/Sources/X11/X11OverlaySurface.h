#pragma once

#include "X11Compositor.h"
#include "X11Screens.h"

#include <Platform/Lifetime.h>
#include <Platform/MainLoop.h>
#include <Platform/OverlaySurface.h>

#include <chrono>
#include <memory>

namespace tilewright {

/// An override-redirect window with per-pixel transparency and an empty input shape: it stays above
/// fullscreen windows, takes no focus, and lets clicks and a window manager's drag through. Where
/// nothing blends windows it is cut to the view's outline instead.
///
/// The window is made at once and kept. Its pixels, which the next showing would have to allocate
/// and the X server to attach anew, are kept for a while after it is hidden: windows are often
/// arranged one after the other.
class X11OverlaySurface final : public OverlaySurface {
public:
    /// How long the pixels are kept while the surface is hidden.
    static constexpr std::chrono::seconds pixelsKept{15};

    /// All but the view have to outlive the surface.
    X11OverlaySurface(X11Connection& connection, X11Compositor& compositor,
                      const X11Screens& screens, MainLoop& loop, std::shared_ptr<OverlayView> view);
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
    MainLoop& loop_;
    std::shared_ptr<OverlayView> view_;
    std::unique_ptr<Container> container_;
    QMetaObject::Connection following_;
    OverlayRendering rendering_ = OverlayRendering::translucent;
    ScreenPtr screen_;
    X11AwaitedReply blurOffer_;
    ScopedTimer releasing_;
    bool isBlurOffered_ = false;
    bool hasBlur_ = false;
    Lifetime life_;
};

} // namespace tilewright
