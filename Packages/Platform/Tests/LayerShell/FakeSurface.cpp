#include "FakeSurface.h"

#include "FakeCompositor.h"
#include "FakeRequests.h"

#include <cmath>
#include <fractional-scale-v1-server.h>
#include <layer-shell-server.h>
#include <viewporter-server.h>

namespace tilewright::testing {

using wayland::Request;

/// A picture in the client's memory, for as long as the client has it.
struct FakeSurface::Held {
    explicit Held(wl_resource* picture)
        : buffer(picture) {
        destroyed.notify = [](wl_listener* listener, void*) {
            Held* held = wl_container_of(listener, held, destroyed);
            held->buffer = nullptr;
            wl_list_remove(&listener->link);
            wl_list_init(&listener->link);
        };
        wl_resource_add_destroy_listener(buffer, &destroyed);
    }
    ~Held() { wl_list_remove(&destroyed.link); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    wl_resource* buffer;
    wl_listener destroyed{};
};

FakeSurface::FakeSurface(FakeCompositor& compositor, wl_resource* resource)
    : compositor_(compositor)
    , resource_(resource) {
    // Newer libraries know more requests, of versions that are not offered here.
    static constexpr auto requests = [] {
        struct wl_surface_interface some {};
        some.destroy = wayland::destroy;
        some.attach = Request<&FakeSurface::attach>::on;
        some.damage = wayland::accept;
        some.frame = wayland::accept;
        some.set_opaque_region = wayland::accept;
        some.set_input_region = Request<&FakeSurface::setInputRegion>::on;
        some.commit = Request<&FakeSurface::commit>::on;
        some.set_buffer_transform = wayland::accept;
        some.set_buffer_scale = Request<&FakeSurface::setBufferScale>::on;
        some.damage_buffer = Request<&FakeSurface::damage>::on;
        some.offset = wayland::accept;
        return some;
    }();
    wl_resource_set_implementation(resource_, &requests, this, nullptr);
}

FakeSurface::~FakeSurface() {
    if (role_)
        wl_resource_set_user_data(role_, nullptr);
}

void FakeSurface::attach(wl_resource* buffer, std::int32_t, std::int32_t) {
    attached_ = buffer ? std::make_unique<Held>(buffer) : nullptr;
    if (!buffer)
        picture = {};
}

void FakeSurface::damage(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    pendingChange_ += QRect(x, y, width, height);
}

void FakeSurface::setInputRegion(wl_resource* region) {
    // Regions here are never given an area.
    letsInputThrough = region != nullptr;
}

void FakeSurface::setBufferScale(std::int32_t scale) {
    bufferScale = scale;
}

void FakeSurface::commit() {
    if (role_ && !isAsked_) {
        isAsked_ = true;
        if (compositor_.preferredScale > 0)
            prefer(compositor_.preferredScale);
        const FakeOutput* output = compositor_.output(outputName);
        if (compositor_.configures && output)
            configure(wishedSize.isEmpty() ? output->frame.size() : wishedSize);
    }
    if (attached_ && role_ && !isConfigured_) {
        wl_resource_post_error(role_, 0, "a picture before the size was known");
        return;
    }
    if (attached_ && attached_->buffer)
        takePicture();
}

void FakeSurface::takePicture() {
    wl_shm_buffer* pixels = wl_shm_buffer_get(attached_->buffer);
    wl_shm_buffer_begin_access(pixels);
    picture = QImage(static_cast<const uchar*>(wl_shm_buffer_get_data(pixels)),
                     wl_shm_buffer_get_width(pixels), wl_shm_buffer_get_height(pixels),
                     wl_shm_buffer_get_stride(pixels), QImage::Format_ARGB32_Premultiplied)
                  .copy();
    wl_shm_buffer_end_access(pixels);
    changed = std::exchange(pendingChange_, {});
    ++pictures;
    compositor_.notePicture(attached_->buffer);
    held_.push_back(std::move(attached_));
    if (compositor_.releases)
        releaseOne();
}

void FakeSurface::releaseOne() {
    if (held_.empty())
        return;
    if (held_.front()->buffer)
        wl_buffer_send_release(held_.front()->buffer);
    held_.erase(held_.begin());
    compositor_.flush();
}

void FakeSurface::takeRole(std::uint32_t version, std::uint32_t id) {
    static constexpr struct zwlr_layer_surface_v1_interface requests {
        .set_size = Request<&FakeSurface::setSize>::on,
        .set_anchor = Request<&FakeSurface::setAnchor>::on,
        .set_exclusive_zone = Request<&FakeSurface::setExclusiveZone>::on,
        .set_margin = wayland::accept,
        .set_keyboard_interactivity = Request<&FakeSurface::setKeyboard>::on,
        .get_popup = wayland::accept, .ack_configure = Request<&FakeSurface::acknowledge>::on,
        .destroy = wayland::destroy, .set_layer = wayland::accept,
    };
    role_ = wl_resource_create(wl_resource_get_client(resource_), &zwlr_layer_surface_v1_interface,
                               static_cast<int>(version), id);
    wl_resource_set_implementation(role_, &requests, this, [](wl_resource* role) {
        if (auto* surface = static_cast<FakeSurface*>(wl_resource_get_user_data(role)))
            surface->role_ = nullptr;
    });
}

void FakeSurface::setSize(std::uint32_t width, std::uint32_t height) {
    wishedSize = {static_cast<int>(width), static_cast<int>(height)};
}

void FakeSurface::setAnchor(std::uint32_t edges) {
    anchor = edges;
}

void FakeSurface::setExclusiveZone(std::int32_t zone) {
    exclusiveZone = zone;
}

void FakeSurface::setKeyboard(std::uint32_t interactivity) {
    keyboard = interactivity;
}

void FakeSurface::acknowledge(std::uint32_t) {
    isConfigured_ = true;
}

void FakeSurface::takeViewport(std::uint32_t id) {
    static constexpr struct wp_viewport_interface requests {
        .destroy = wayland::destroy, .set_source = wayland::accept,
        .set_destination = Request<&FakeSurface::setDestination>::on,
    };
    wl_resource* viewport =
        wl_resource_create(wl_resource_get_client(resource_), &wp_viewport_interface, 1, id);
    wl_resource_set_implementation(viewport, &requests, this, nullptr);
}

void FakeSurface::setDestination(std::int32_t width, std::int32_t height) {
    destination = {width, height};
}

void FakeSurface::takeScale(std::uint32_t id) {
    static constexpr struct wp_fractional_scale_v1_interface requests {
        .destroy = wayland::destroy,
    };
    scale_ = wl_resource_create(wl_resource_get_client(resource_),
                                &wp_fractional_scale_v1_interface, 1, id);
    wl_resource_set_implementation(scale_, &requests, nullptr, nullptr);
}

void FakeSurface::configure(QSize size) {
    zwlr_layer_surface_v1_send_configure(role_, 1, static_cast<std::uint32_t>(size.width()),
                                         static_cast<std::uint32_t>(size.height()));
    compositor_.flush();
}

void FakeSurface::close() {
    zwlr_layer_surface_v1_send_closed(role_);
    compositor_.flush();
}

void FakeSurface::prefer(double pixelsPerUnit) {
    if (scale_)
        wp_fractional_scale_v1_send_preferred_scale(
            scale_, static_cast<std::uint32_t>(std::lround(pixelsPerUnit * 120)));
    compositor_.flush();
}

} // namespace tilewright::testing
