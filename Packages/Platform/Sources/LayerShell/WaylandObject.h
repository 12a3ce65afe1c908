#pragma once

#include <memory>

struct org_kde_kwin_keystate;
struct wl_buffer;
struct wl_callback;
struct wl_compositor;
struct wl_display;
struct wl_output;
struct wl_region;
struct wl_registry;
struct wl_shm;
struct wl_shm_pool;
struct wl_surface;
struct wp_fractional_scale_manager_v1;
struct wp_fractional_scale_v1;
struct wp_viewport;
struct wp_viewporter;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;
struct zwp_idle_inhibit_manager_v1;
struct zwp_idle_inhibitor_v1;
struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace tilewright {

/// Ends objects of a compositor's, on both sides; once the connection is lost, on this one. The
/// connection itself is closed when nothing is left of it.
class WaylandDeleter {
public:
    WaylandDeleter() = default;
    explicit WaylandDeleter(std::shared_ptr<wl_display> display)
        : display_(std::move(display)) {}

    void operator()(org_kde_kwin_keystate* object) const;
    void operator()(wl_buffer* object) const;
    void operator()(wl_callback* object) const;
    void operator()(wl_compositor* object) const;
    void operator()(wl_output* object) const;
    void operator()(wl_region* object) const;
    void operator()(wl_registry* object) const;
    void operator()(wl_shm* object) const;
    void operator()(wl_shm_pool* object) const;
    void operator()(wl_surface* object) const;
    void operator()(wp_fractional_scale_manager_v1* object) const;
    void operator()(wp_fractional_scale_v1* object) const;
    void operator()(wp_viewport* object) const;
    void operator()(wp_viewporter* object) const;
    void operator()(zwlr_layer_shell_v1* object) const;
    void operator()(zwlr_layer_surface_v1* object) const;
    void operator()(zwp_idle_inhibit_manager_v1* object) const;
    void operator()(zwp_idle_inhibitor_v1* object) const;
    void operator()(zxdg_output_manager_v1* object) const;
    void operator()(zxdg_output_v1* object) const;

private:
    std::shared_ptr<wl_display> display_;
};

/// Owns an object of a compositor's. It has to end before whoever listens to the object.
template<class Object>
using WaylandObject = std::unique_ptr<Object, WaylandDeleter>;

} // namespace tilewright
