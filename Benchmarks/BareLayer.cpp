#include "BareLayer.h"

#include <LayerShell/WaylandListener.h>

#include <algorithm>
#include <key-states-client.h>
#include <layer-shell-client.h>
#include <utility>

namespace tilewright::testing {

void BareLayer::show(std::uint32_t color) {
    color_ = color;
    constexpr std::uint32_t allEdges = 15;
    surface_ = wl_compositor_create_surface(wayland_.compositor);
    layer_ = zwlr_layer_shell_v1_get_layer_surface(wayland_.layerShell, surface_, wayland_.output,
                                                   ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "bare");
    static constexpr zwlr_layer_surface_v1_listener events{
        .configure = wayland::Call<&BareLayer::configure>::on,
        .closed = wayland::ignore,
    };
    zwlr_layer_surface_v1_add_listener(layer_, &events, this);
    zwlr_layer_surface_v1_set_anchor(layer_, allEdges);
    zwlr_layer_surface_v1_set_exclusive_zone(layer_, -1);
    wl_surface_commit(surface_);
    wl_display_flush(wayland_.display);
}

bool BareLayer::showAtControl(std::uint32_t color) {
    color_ = color;
    static constexpr org_kde_kwin_keystate_listener events{
        .stateChanged = wayland::Call<&BareLayer::takeKey>::on,
    };
    if (wayland_.keyStates && !std::exchange(isShownAtControl_, true)) {
        org_kde_kwin_keystate_add_listener(wayland_.keyStates, &events, this);
        wl_display_roundtrip(wayland_.display);
    }
    return isShownAtControl_;
}

void BareLayer::takeKey(std::uint32_t key, std::uint32_t state) {
    if (key == ORG_KDE_KWIN_KEYSTATE_KEY_CONTROL && state == ORG_KDE_KWIN_KEYSTATE_STATE_PRESSED)
        show(color_);
}

void BareLayer::configure(std::uint32_t serial, std::uint32_t width, std::uint32_t height) {
    zwlr_layer_surface_v1_ack_configure(layer_, serial);
    size_ = {static_cast<int>(width), static_cast<int>(height)};
    if (!picture_.buffer)
        picture_ = wayland_.makePicture(size_.width(), size_.height(), WL_SHM_FORMAT_ARGB8888);
    fill(color_);
}

void BareLayer::fill(std::uint32_t color) {
    std::fill_n(picture_.pixels, qint64{size_.width()} * size_.height(), color);
    wl_surface_attach(surface_, picture_.buffer, 0, 0);
    wl_surface_damage_buffer(surface_, 0, 0, size_.width(), size_.height());
    wl_surface_commit(surface_);
    wl_display_flush(wayland_.display);
}

void BareLayer::hide() {
    zwlr_layer_surface_v1_destroy(layer_);
    wl_surface_destroy(surface_);
    wl_display_flush(wayland_.display);
}

} // namespace tilewright::testing
