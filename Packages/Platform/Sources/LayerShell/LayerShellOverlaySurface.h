#pragma once

#include "LayerSurface.h"
#include "OverlayBuffers.h"
#include "WaylandConnection.h"
#include "WaylandOutputs.h"

#include <Platform/EventMonitors.h>
#include <Platform/Lifetime.h>
#include <Platform/MainLoop.h>
#include <Platform/OverlaySurface.h>
#include <Platform/Pointer.h>
#include <Platform/PostedCall.h>

#include <chrono>
#include <functional>
#include <memory>

namespace tilewright {

/// The overlay as a layer surface of its own, painted by the view: it stays above full-screen
/// windows and panels, takes no focus, and lets clicks and a compositor's drag through.
///
/// The surface is made as a drag begins, and kept for a while after it is hidden, with a picture
/// that nobody sees: compositors play effects as windows come and go, and the overlay has to be
/// there, and gone, at once. Only what has changed is painted, never into what the compositor may
/// be reading. What the compositor ends (the display is gone, or it has ended itself) is made anew
/// as soon as that is possible. Main thread only.
class LayerShellOverlaySurface final : public OverlaySurface, private LayerSurface::Owner {
public:
    /// Which of the compositor's outputs a display is; null where it is none of them now.
    using OutputOf = std::function<const WaylandOutput*(const Screen&)>;

    /// How long the surface and its pixels are kept while it is hidden.
    static constexpr std::chrono::seconds pixelsKept{60};

    /// All but the view have to outlive the surface.
    LayerShellOverlaySurface(WaylandConnection& connection, WaylandOutputs& outputs,
                             OutputOf outputOf, MainLoop& loop, std::shared_ptr<OverlayView> view);
    ~LayerShellOverlaySurface() override;

    void setScreen(const ScreenPtr& screen) override;
    void orderFront() override;
    void orderOut() override;

    /// Makes the surface and paints the pixels for a screen now, unseen, so that a showing on it
    /// that may follow soon need not.
    void prepare(const ScreenPtr& screen);
    /// From now on prepares for the screen beneath the pointer as each drag of another
    /// application's begins. All of these have to outlive the surface.
    void prepareAtDrags(EventMonitors& monitors, const Screens& screens, const Pointer& pointer);

private:
    void surfaceResized(QSize size) override;
    void surfaceScaled(double pixelsPerUnit) override;
    void surfaceClosed() override;

    void begin();
    void end();
    void followOutputs();
    /// Takes pixels of the size that the view has on an output of this size.
    void makePixels(QSize size, double scale);
    void repaint(const QRegion& region);
    [[nodiscard]] bool canBeVeiled() const;
    void veil();
    void paint();
    [[nodiscard]] double scaleFor(const WaylandOutput& output) const;
    void keepForAWhile();

    WaylandConnection& connection_;
    WaylandOutputs& outputs_;
    const OutputOf outputOf_;
    MainLoop& loop_;
    const std::shared_ptr<OverlayView> view_;
    ScreenPtr screen_;
    bool isShown_ = false;
    /// The output beneath the surface, as it was when the surface was made.
    WaylandOutput output_;
    std::unique_ptr<LayerSurface> surface_;
    /// What the compositor has decided; empty before.
    QSize size_;
    double preferredScale_ = 1;
    double scale_ = 1;
    std::unique_ptr<OverlayBuffers> buffers_;
    /// One transparent pixel.
    std::unique_ptr<OverlayBuffer> veil_;
    /// What has to be painted.
    QRegion dirty_;
    ScopedTimer releasing_;
    /// Ends what tells of drags.
    std::function<void()> forgetDrags_;
    bool isDragging_ = false;
    std::vector<QMetaObject::Connection> following_;
    PostedCall painting_{loop_, [this] { paint(); }};
    Lifetime life_;
};

} // namespace tilewright
