#pragma once

#include "X11Compositor.h"
#include "X11EventMonitors.h"
#include "X11Fence.h"
#include "X11OverlayPixels.h"
#include "X11OverlayWindow.h"
#include "X11Screens.h"

#include <Platform/Lifetime.h>
#include <Platform/MainLoop.h>
#include <Platform/OverlaySurface.h>
#include <Platform/PostedCall.h>

#include <chrono>
#include <memory>

namespace tilewright {

/// An override-redirect window with per-pixel transparency and an empty input shape: it stays above
/// fullscreen windows, takes no focus, and lets clicks and a window manager's drag through. Where
/// nothing blends windows it is cut to the view's outline instead.
///
/// The view paints into memory, and the server has the picture before it shows the window: a
/// compositor that hears of the window has to draw the screen only once. The picture is made when a
/// drag is likely to follow, so that the drag does not wait for that, and kept for a while after
/// the surface is hidden: windows are often arranged one after the other, and all that differs then
/// is the highlight. Main thread only.
class X11OverlaySurface final : public OverlaySurface {
public:
    /// How long the pixels are kept while the surface is hidden and no drag is ahead.
    static constexpr std::chrono::seconds pixelsKept{15};
    /// How long the window stays at most after the surface was hidden, until the window manager has
    /// come to what was asked of it before: taking a window of the screen's size away keeps the
    /// server busy, and the window that has been let go comes first. A frame, for most displays.
    static constexpr std::chrono::milliseconds longestDelay{16};

    /// How long a compositor is left alone with a window that has just been shown. It has to make
    /// itself a picture of the window first, and each change that it hears of meanwhile makes the
    /// first frame come later. About as long as a frame takes it.
    static constexpr std::chrono::milliseconds appearance{16};

    /// All but the view have to outlive the surface.
    X11OverlaySurface(X11Connection& connection, X11Compositor& compositor,
                      const X11Screens& screens, X11EventMonitors& eventMonitors, MainLoop& loop,
                      std::shared_ptr<OverlayView> view);
    ~X11OverlaySurface() override;

    void setScreen(const ScreenPtr& screen) override;
    void orderFront() override;
    void orderOut() override;

private:
    /// Whether what the server may be reading is painted over.
    enum class Painting { whenRead, now };

    void showWindow();
    void hideWindow();
    /// Makes a hidden window for what shows it.
    void makeWindow(const X11Compositor& compositor);
    /// Has a window and pixels of the screen's size in its place. Answers whether there can be.
    bool place();
    void makePixels(QSize pixels);
    void follow(const X11Compositor& compositor);
    void applyAreas();
    void setBlur(const QRegion& region);
    void readBlurOffer();
    void repaint(const QRegion& region);
    void paint(Painting when);
    /// Has the picture for the display at the place ready, as far as that can be while nothing
    /// shows.
    void prepare(AppKitPoint place);
    void releasePixelsLater();

    X11Connection& connection_;
    const X11Screens& screens_;
    X11EventMonitors& eventMonitors_;
    MainLoop& loop_;
    const std::shared_ptr<OverlayView> view_;
    std::unique_ptr<X11OverlayWindow> window_;
    std::unique_ptr<X11OverlayPixels> pixels_;
    /// What of the view has to be painted, in points.
    QRegion dirty_;
    /// How many pixels a point of the view is long.
    double scale_ = 1;
    X11Fence fence_;
    QMetaObject::Connection following_;
    OverlayRendering rendering_ = OverlayRendering::translucent;
    ScreenPtr screen_;
    X11AwaitedReply blurOffer_;
    ScopedTimer hiding_;
    ScopedTimer appearing_;
    ScopedTimer releasing_;
    bool isShown_ = false;
    bool isBlurOffered_ = false;
    PostedCall painting_{loop_, [this] { paint(Painting::whenRead); }};
    Lifetime life_;
};

} // namespace tilewright
