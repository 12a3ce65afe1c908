#pragma once

#include "OverlayPicture.h"
#include "Screens.h"

#include <functional>

class QRegion;
class QWidget;

namespace tilewright {

/// How a surface can show its view.
enum class OverlayRendering {
    /// Per-pixel transparency: what is beneath shines through.
    translucent,
    /// No transparency to be had: the surface is cut to the view's outline, all of it opaque.
    shaped,
};

/// What an overlay surface shows: a widget that can also do without transparency, and the same as
/// plain values for desktops that draw it by themselves.
class OverlayView {
public:
    virtual ~OverlayView() = default;

    /// What is to be seen on the display now, whatever size the widget has.
    [[nodiscard]] virtual OverlayPicture picture(const ScreenPtr& display) const = 0;
    /// Registers the surface's wish to be told when `picture()` has another answer: once for all
    /// changes of a turn of the loop.
    virtual void onPictureChanged(std::function<void()> callback) = 0;

    /// The widget that draws. It fills the surface.
    [[nodiscard]] virtual QWidget& widget() = 0;
    /// For surfaces that show pixels of their own, painted by `QWidget::render`, while the widget
    /// stays hidden: until it is taken back with a null function, the view calls the function with
    /// each area that looks different now, in the widget's own coordinates.
    virtual void setRepaint(std::function<void(const QRegion&)> repaint) = 0;
    /// Tells the view whether anybody sees such pixels. What changes while nobody does, as from the
    /// beginning, changes at once.
    virtual void setShown(bool isShown) = 0;
    /// Tells the view how it is shown from now on; it repaints where that matters.
    virtual void setRendering(OverlayRendering rendering) = 0;
    /// What is opaque under `OverlayRendering::shaped`, in the widget's own coordinates.
    [[nodiscard]] virtual QRegion outline() = 0;
    /// The area behind which a blur looks right under `OverlayRendering::translucent`, in the
    /// widget's own coordinates.
    [[nodiscard]] virtual QRegion blurArea() = 0;
    /// Registers the surface's wish to be told when `outline()` or `blurArea()` changes.
    virtual void onAreasChanged(std::function<void()> callback) = 0;
    /// Ends running animations at their end state: the surface was hidden.
    virtual void finishAnimations() = 0;
};

/// A borderless, transparent, click-through surface over one screen, above everything else there,
/// full-screen windows and panels included. It takes no focus and shows in no list of windows.
/// Made hidden; hiding keeps it for the next showing. Main thread only.
class OverlaySurface {
public:
    virtual ~OverlaySurface() = default;

    /// Places the surface over a screen, its whole frame, and redraws at once if it is shown.
    virtual void setScreen(const ScreenPtr& screen) = 0;
    /// Shows the surface in front of everything without activating this application.
    virtual void orderFront() = 0;
    /// Hides the surface. The view's animations end.
    virtual void orderOut() = 0;
};

} // namespace tilewright
