#include "WaylandObject.h"

#include "WaylandProtocols.h"

namespace tilewright {

void WaylandDeleter::operator()(org_kde_kwin_keystate* object) const {
    org_kde_kwin_keystate_destroy(object);
}
void WaylandDeleter::operator()(wl_buffer* object) const {
    wl_buffer_destroy(object);
}
void WaylandDeleter::operator()(wl_callback* object) const {
    wl_callback_destroy(object);
}
void WaylandDeleter::operator()(wl_compositor* object) const {
    wl_compositor_destroy(object);
}
void WaylandDeleter::operator()(wl_output* object) const {
    if (wl_output_get_version(object) >= WL_OUTPUT_RELEASE_SINCE_VERSION)
        wl_output_release(object);
    else
        wl_output_destroy(object);
}
void WaylandDeleter::operator()(wl_region* object) const {
    wl_region_destroy(object);
}
void WaylandDeleter::operator()(wl_registry* object) const {
    wl_registry_destroy(object);
}
void WaylandDeleter::operator()(wl_shm* object) const {
    wl_shm_destroy(object);
}
void WaylandDeleter::operator()(wl_shm_pool* object) const {
    wl_shm_pool_destroy(object);
}
void WaylandDeleter::operator()(wl_surface* object) const {
    wl_surface_destroy(object);
}
void WaylandDeleter::operator()(wp_fractional_scale_manager_v1* object) const {
    wp_fractional_scale_manager_v1_destroy(object);
}
void WaylandDeleter::operator()(wp_fractional_scale_v1* object) const {
    wp_fractional_scale_v1_destroy(object);
}
void WaylandDeleter::operator()(wp_viewport* object) const {
    wp_viewport_destroy(object);
}
void WaylandDeleter::operator()(wp_viewporter* object) const {
    wp_viewporter_destroy(object);
}
void WaylandDeleter::operator()(zwlr_layer_shell_v1* object) const {
    // Older ones do not know the request and would end the connection for it.
    if (zwlr_layer_shell_v1_get_version(object) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION)
        zwlr_layer_shell_v1_destroy(object);
    else
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(object));
}
void WaylandDeleter::operator()(zwlr_layer_surface_v1* object) const {
    zwlr_layer_surface_v1_destroy(object);
}
void WaylandDeleter::operator()(zwp_idle_inhibit_manager_v1* object) const {
    zwp_idle_inhibit_manager_v1_destroy(object);
}
void WaylandDeleter::operator()(zwp_idle_inhibitor_v1* object) const {
    zwp_idle_inhibitor_v1_destroy(object);
}
void WaylandDeleter::operator()(zxdg_output_manager_v1* object) const {
    zxdg_output_manager_v1_destroy(object);
}
void WaylandDeleter::operator()(zxdg_output_v1* object) const {
    zxdg_output_v1_destroy(object);
}

} // namespace tilewright
