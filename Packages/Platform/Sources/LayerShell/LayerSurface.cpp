#include "LayerSurface.h"

#include "WaylandListener.h"
#include "WaylandProtocols.h"

#include <utility>

namespace tilewright {

namespace {

constexpr std::uint32_t topLeft =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT;
constexpr std::uint32_t allEdges =
    topLeft | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
constexpr std::int32_t overTheRoomOfPanels = -1;
constexpr std::uint32_t neverTheKeyboard = 0;
/// In these a compositor counts how many pixels it wants along a unit.
constexpr double fractionsPerUnit = 120;

} // namespace

LayerSurface::LayerSurface(const WaylandConnection& connection, const Wish& wish, Owner& owner)
    : owner_(owner) {
    const WaylandGlobals& globals = connection.globals();
    surface_ = connection.own(wl_compositor_create_surface(globals.compositor.get()));
    const auto nowhere = connection.own(wl_compositor_create_region(globals.compositor.get()));
    wl_surface_set_input_region(surface_.get(), nowhere.get());
    if (globals.viewporter)
        viewport_ =
            connection.own(wp_viewporter_get_viewport(globals.viewporter.get(), surface_.get()));
    if (globals.viewporter && globals.fractionalScales) {
        scale_ = connection.own(wp_fractional_scale_manager_v1_get_fractional_scale(
            globals.fractionalScales.get(), surface_.get()));
        static constexpr wp_fractional_scale_v1_listener events{
            .preferred_scale = wayland::Call<&LayerSurface::prefer>::on,
        };
        wp_fractional_scale_v1_add_listener(scale_.get(), &events, this);
    }
    layer_ = connection.own(zwlr_layer_shell_v1_get_layer_surface(
        globals.layerShell.get(), surface_.get(), wish.output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY,
        wish.purpose.constData()));
    static constexpr zwlr_layer_surface_v1_listener events{
        .configure = wayland::Call<&LayerSurface::configure>::on,
        .closed = wayland::Call<&LayerSurface::close>::on,
    };
    zwlr_layer_surface_v1_add_listener(layer_.get(), &events, this);
    if (!wish.size.isEmpty())
        zwlr_layer_surface_v1_set_size(layer_.get(), static_cast<std::uint32_t>(wish.size.width()),
                                       static_cast<std::uint32_t>(wish.size.height()));
    zwlr_layer_surface_v1_set_anchor(layer_.get(), wish.size.isEmpty() ? allEdges : topLeft);
    zwlr_layer_surface_v1_set_exclusive_zone(layer_.get(), overTheRoomOfPanels);
    zwlr_layer_surface_v1_set_keyboard_interactivity(layer_.get(), neverTheKeyboard);
    // Without a picture: only once its size has been told may it have one.
    wl_surface_commit(surface_.get());
}

LayerSurface::~LayerSurface() = default;

void LayerSurface::show(wl_buffer& picture, QSize pixels, const QRegion& changed) {
    wl_surface_attach(surface_.get(), &picture, 0, 0);
    for (const QRect& rect : changed)
        wl_surface_damage_buffer(surface_.get(), rect.x(), rect.y(), rect.width(), rect.height());
    if (viewport_)
        wp_viewport_set_destination(viewport_.get(), size_.width(), size_.height());
    else
        wl_surface_set_buffer_scale(surface_.get(), pixels.width() / size_.width());
    wl_surface_commit(surface_.get());
}

void LayerSurface::configure(std::uint32_t serial, std::uint32_t width, std::uint32_t height) {
    zwlr_layer_surface_v1_ack_configure(layer_.get(), serial);
    const QSize size(static_cast<int>(width), static_cast<int>(height));
    // Some say the same several times over.
    if (std::exchange(size_, size) != size && !size.isEmpty())
        owner_.surfaceResized(size);
}

void LayerSurface::prefer(std::uint32_t scale) {
    owner_.surfaceScaled(scale / fractionsPerUnit);
}

void LayerSurface::close() {
    owner_.surfaceClosed();
}

} // namespace tilewright
