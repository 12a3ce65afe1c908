#pragma once

#include "X11Compositor.h"
#include "X11EventMonitors.h"
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
/// The window is made at once and kept. Its pixels are allocated when a drag is likely to follow,
/// so that the drag does not wait for that, and kept for a while after the surface is hidden:
/// windows are often arranged one after the other.
class X11OverlaySurface final : public OverlaySurface {
public:
    /// How long the pixels are kept while the surface is hidden and no drag is ahead.
    static constexpr std::chrono::seconds pixelsKept{15};

    /// All but the view have to outlive the surface.
    X11OverlaySurface(X11Connection& connection, X11Compositor& compositor,
                      const X11Screens& screens, X11EventMonitors& eventMonitors, MainLoop& loop,
                      std::shared_ptr<OverlayView> view);
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
    /// Has the pixels for the display at the place ready, as far as that can be while nothing
    /// shows.
    void preparePixels(AppKitPoint place);
    void releasePixelsLater();
    void releasePixels();
    [[nodiscard]] xcb_window_t window() const;

    X11Connection& connection_;
    const X11Screens& screens_;
    X11EventMonitors& eventMonitors_;
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
