#pragma once

#include "WaylandConnection.h"

#include <QByteArray>
#include <QRegion>
#include <QSize>

namespace tilewright {

/// A surface above everything on one display, full-screen windows and panels included. Input goes
/// through it, and it never has the focus. It is seen once it has been given a picture.
class LayerSurface {
public:
    /// Whoever has the surface. Each of the calls may be the last: the surface may be ended in it.
    class Owner {
    public:
        /// The compositor has decided how large the surface is, in its units, and wants a picture
        /// of that size.
        virtual void surfaceResized(QSize size) = 0;
        /// The compositor has another wish for how many pixels lie along one unit.
        virtual void surfaceScaled(double pixelsPerUnit) = 0;
        /// The compositor shows the surface no longer and never will again.
        virtual void surfaceClosed() = 0;

    protected:
        ~Owner() = default;
    };

    struct Wish {
        /// What the surface is for, as compositors tell their users.
        QByteArray purpose;
        /// Null leaves the choice of the display to the compositor.
        wl_output* output = nullptr;
        /// At the top-left corner, in the compositor's units; empty for all of the display.
        QSize size;
    };

    /// Layers have to be offered. The connection and the owner have to outlive the surface.
    LayerSurface(const WaylandConnection& connection, const Wish& wish, Owner& owner);
    ~LayerSurface();
    LayerSurface(const LayerSurface&) = delete;
    LayerSurface& operator=(const LayerSurface&) = delete;

    [[nodiscard]] wl_surface& object() const { return *surface_; }
    /// Whether a picture may have any number of pixels, or else a whole multiple of the size.
    [[nodiscard]] bool scalesFreely() const { return viewport_ != nullptr; }
    /// Shows a picture, of which only the changed part, in its pixels, need be looked at. The size
    /// has to be known.
    void show(wl_buffer& picture, QSize pixels, const QRegion& changed);

private:
    void configure(std::uint32_t serial, std::uint32_t width, std::uint32_t height);
    void prefer(std::uint32_t scale);
    void close();

    Owner& owner_;
    QSize size_;
    WaylandObject<wl_surface> surface_;
    WaylandObject<wp_viewport> viewport_;
    WaylandObject<wp_fractional_scale_v1> scale_;
    WaylandObject<zwlr_layer_surface_v1> layer_;
};

} // namespace tilewright
