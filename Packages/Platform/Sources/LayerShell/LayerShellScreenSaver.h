#pragma once

#include "LayerSurface.h"
#include "OverlayBuffers.h"
#include "WaylandConnection.h"

#include <FreeDesktop/ScreenSaver.h>
#include <Platform/Lifetime.h>
#include <Platform/MainLoop.h>

#include <memory>
#include <vector>

namespace tilewright {

/// The idling of a compositor that does as its clients wish, for sessions in which no service keeps
/// a list of such wishes. A wish counts only for a surface that is shown: one of a single
/// transparent pixel is, for as long as a suspension lasts, and is made anew when it is lost with
/// its display or with the compositor. Main thread only.
class LayerShellScreenSaver final : public ScreenSaver, private LayerSurface::Owner {
public:
    /// The connection and the loop have to outlive this.
    LayerShellScreenSaver(WaylandConnection& connection, MainLoop& loop);
    ~LayerShellScreenSaver() override;

    void suspend() override;
    /// Answers at once: a compositor that offers this refuses nobody.
    [[nodiscard]] bool isSuspended(std::chrono::milliseconds bound) override;
    void resume() override;

private:
    void surfaceResized(QSize size) override;
    void surfaceScaled(double pixelsPerUnit) override;
    void surfaceClosed() override;

    [[nodiscard]] bool isOffered() const;
    void begin();
    void end();

    WaylandConnection& connection_;
    MainLoop& loop_;
    int suspensions_ = 0;
    std::unique_ptr<LayerSurface> surface_;
    WaylandObject<zwp_idle_inhibitor_v1> wish_;
    std::unique_ptr<OverlayBuffer> pixel_;
    std::vector<QMetaObject::Connection> following_;
    Lifetime life_;
};

} // namespace tilewright
