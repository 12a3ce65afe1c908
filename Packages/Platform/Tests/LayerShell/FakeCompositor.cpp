#include "FakeCompositor.h"

#include "FakeRequests.h"

#include <QAbstractEventDispatcher>
#include <QDir>
#include <algorithm>
#include <fractional-scale-v1-server.h>
#include <idle-inhibit-unstable-v1-server.h>
#include <key-states-server.h>
#include <layer-shell-server.h>
#include <viewporter-server.h>
#include <xdg-output-unstable-v1-server.h>

namespace tilewright::testing {

using wayland::Bind;

namespace {

FakeCompositor& compositorOf(wl_resource* resource) {
    return *static_cast<FakeCompositor*>(wl_resource_get_user_data(resource));
}

FakeSurface& surfaceOf(wl_resource* resource) {
    return *static_cast<FakeSurface*>(wl_resource_get_user_data(resource));
}

wl_resource* make(wl_client* client, const wl_interface& interface, std::uint32_t version,
                  std::uint32_t id, const void* requests, void* receiver,
                  wl_resource_destroy_func_t destroyed = nullptr) {
    wl_resource* resource = wl_resource_create(client, &interface, static_cast<int>(version), id);
    wl_resource_set_implementation(resource, requests, receiver, destroyed);
    return resource;
}

} // namespace

struct FakeCompositor::Inhibitor {
    FakeSurface* surface;
    wl_resource* resource;
    /// Whether the surface showed when the wish came.
    bool hasBegun;
};

/// A picture that was shown once, until the client destroys it.
struct FakeCompositor::Picture {
    Picture(FakeCompositor& owner, wl_resource* picture)
        : compositor(owner)
        , buffer(picture) {
        destroyed.notify = [](wl_listener* listener, void*) {
            Picture* gone = wl_container_of(listener, gone, destroyed);
            std::erase_if(gone->compositor.pictures_,
                          [gone](const auto& one) { return one.get() == gone; });
        };
        wl_resource_add_destroy_listener(buffer, &destroyed);
    }
    ~Picture() { wl_list_remove(&destroyed.link); }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    FakeCompositor& compositor;
    wl_resource* buffer;
    wl_listener destroyed{};
};

FakeCompositor::FakeCompositor(const QString& folder, const QString& name)
    : FakeCompositor(folder, name, Offers{}) {}

FakeCompositor::FakeCompositor(const QString& folder, const QString& name, Offers offers)
    : display_(wl_display_create())
    , outputVersion_(offers.output) {
    const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", QDir::toNativeSeparators(folder).toLocal8Bit());
    if (wl_display_add_socket(display_, name.toLocal8Bit().constData()) != 0)
        qFatal("The fake compositor has no socket");
    qputenv("XDG_RUNTIME_DIR", before);
    offerEverything(offers);
    clientCreated_.notify = [](wl_listener* listener, void*) {
        FakeCompositor* compositor = wl_container_of(listener, compositor, clientCreated_);
        ++compositor->connections_;
    };
    wl_display_add_client_created_listener(display_, &clientCreated_);
    wl_event_loop* loop = wl_display_get_event_loop(display_);
    notifier_ =
        std::make_unique<QSocketNotifier>(wl_event_loop_get_fd(loop), QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, [this, loop] {
        wl_event_loop_dispatch(loop, 0);
        flush();
    });
}

FakeCompositor::~FakeCompositor() {
    notifier_.reset();
    wl_list_remove(&clientCreated_.link);
    wl_display_destroy_clients(display_);
    outputs_.clear();
    wl_display_destroy(display_);
}

void FakeCompositor::flush() {
    wl_display_flush_clients(display_);
}

void FakeCompositor::offerEverything(const Offers& offers) {
    const auto offer = [this](const wl_interface& interface, std::uint32_t version,
                              wl_global_bind_func_t bind) {
        if (version > 0)
            wl_global_create(display_, &interface, static_cast<int>(version), this, bind);
    };
    wl_display_init_shm(display_);
    offer(wl_compositor_interface, 4, Bind<&FakeCompositor::bindCompositor>::on);
    offer(zwlr_layer_shell_v1_interface, offers.layerShell,
          Bind<&FakeCompositor::bindLayerShell>::on);
    offer(wp_viewporter_interface, offers.viewporter, Bind<&FakeCompositor::bindViewporter>::on);
    offer(wp_fractional_scale_manager_v1_interface, offers.fractionalScale,
          Bind<&FakeCompositor::bindFractionalScale>::on);
    offer(zxdg_output_manager_v1_interface, offers.outputManager,
          Bind<&FakeCompositor::bindOutputManager>::on);
    offer(org_kde_kwin_keystate_interface, offers.keyStates,
          Bind<&FakeCompositor::bindKeyStates>::on);
    offer(zwp_idle_inhibit_manager_v1_interface, offers.idleInhibition,
          Bind<&FakeCompositor::bindIdleInhibition>::on);
}

void FakeCompositor::bindCompositor(wl_client* client, std::uint32_t version, std::uint32_t id) {
    static constexpr struct wl_region_interface regionRequests {
        .destroy = wayland::destroy, .add = wayland::accept, .subtract = wayland::accept,
    };
    // Newer libraries know more requests, of versions that are not offered here.
    static constexpr auto requests = [] {
        struct wl_compositor_interface some {};
        some.create_surface = [](wl_client* owner, wl_resource* resource, std::uint32_t surface) {
            compositorOf(resource).makeSurface(owner, surface);
        };
        some.create_region = [](wl_client* owner, wl_resource*, std::uint32_t region) {
            make(owner, wl_region_interface, 1, region, &regionRequests, nullptr);
        };
        return some;
    }();
    make(client, wl_compositor_interface, version, id, &requests, this);
}

void FakeCompositor::makeSurface(wl_client* client, std::uint32_t id) {
    wl_resource* resource = wl_resource_create(client, &wl_surface_interface, 4, id);
    surfaces_.push_back(std::make_unique<FakeSurface>(*this, resource));
    wl_resource_set_destructor(resource, [](wl_resource* gone) {
        FakeSurface& surface = surfaceOf(gone);
        FakeCompositor& compositor = surface.compositor();
        for (const auto& inhibitor : compositor.inhibitors_) {
            if (inhibitor->surface == &surface)
                inhibitor->surface = nullptr;
        }
        std::erase_if(compositor.surfaces_,
                      [&surface](const auto& one) { return one.get() == &surface; });
    });
}

void FakeCompositor::bindLayerShell(wl_client* client, std::uint32_t version, std::uint32_t id) {
    static constexpr struct zwlr_layer_shell_v1_interface requests {
        .get_layer_surface =
            [](wl_client*, wl_resource* resource, std::uint32_t role, wl_resource* surface,
               wl_resource* output, std::uint32_t layer, const char* purpose) {
                FakeSurface& target = surfaceOf(surface);
                const FakeCompositor& compositor = compositorOf(resource);
                if (const FakeOutputGlobal* global = FakeOutputGlobal::of(output))
                    target.outputName = global->values().name;
                else if (!output && !compositor.outputs_.empty())
                    target.outputName = compositor.outputs_.front()->values().name;
                target.layer = layer;
                target.purpose = purpose;
                target.takeRole(static_cast<std::uint32_t>(wl_resource_get_version(resource)),
                                role);
            },
        .destroy = wayland::destroy,
    };
    make(client, zwlr_layer_shell_v1_interface, version, id, &requests, this);
}

void FakeCompositor::bindViewporter(wl_client* client, std::uint32_t version, std::uint32_t id) {
    static constexpr struct wp_viewporter_interface requests {
        .destroy = wayland::destroy,
        .get_viewport = [](wl_client*, wl_resource*, std::uint32_t viewport, wl_resource* surface) {
            surfaceOf(surface).takeViewport(viewport);
        },
    };
    make(client, wp_viewporter_interface, version, id, &requests, this);
}

void FakeCompositor::bindFractionalScale(wl_client* client, std::uint32_t version,
                                         std::uint32_t id) {
    static constexpr struct wp_fractional_scale_manager_v1_interface requests {
        .destroy = wayland::destroy,
        .get_fractional_scale = [](wl_client*, wl_resource*, std::uint32_t scale,
                                   wl_resource* surface) { surfaceOf(surface).takeScale(scale); },
    };
    make(client, wp_fractional_scale_manager_v1_interface, version, id, &requests, this);
}

void FakeCompositor::bindOutputManager(wl_client* client, std::uint32_t version, std::uint32_t id) {
    static constexpr struct zxdg_output_manager_v1_interface requests {
        .destroy = wayland::destroy,
        .get_xdg_output = [](wl_client* owner, wl_resource* resource, std::uint32_t logical,
                             wl_resource* output) {
            if (FakeOutputGlobal* global = FakeOutputGlobal::of(output))
                global->addLogical(
                    owner, static_cast<std::uint32_t>(wl_resource_get_version(resource)), logical);
        },
    };
    make(client, zxdg_output_manager_v1_interface, version, id, &requests, this);
}

void FakeCompositor::bindKeyStates(wl_client* client, std::uint32_t version, std::uint32_t id) {
    static constexpr struct org_kde_kwin_keystate_interface requests {
        .fetchStates =
            [](wl_client*, wl_resource* resource) {
                const auto& keys = compositorOf(resource).keys_;
                for (std::uint32_t key = 0; key < keys.size(); ++key)
                    org_kde_kwin_keystate_send_stateChanged(resource, key, keys.at(key));
            },
        .destroy = wayland::destroy,
    };
    keyStates_.push_back(make(
        client, org_kde_kwin_keystate_interface, version, id, &requests, this,
        [](wl_resource* resource) { std::erase(compositorOf(resource).keyStates_, resource); }));
}

void FakeCompositor::bindIdleInhibition(wl_client* client, std::uint32_t version,
                                        std::uint32_t id) {
    static constexpr struct zwp_idle_inhibit_manager_v1_interface requests {
        .destroy = wayland::destroy,
        .create_inhibitor = [](wl_client* owner, wl_resource* resource, std::uint32_t inhibitor,
                               wl_resource* surface) {
            compositorOf(resource).makeInhibitor(owner, inhibitor, &surfaceOf(surface));
        },
    };
    make(client, zwp_idle_inhibit_manager_v1_interface, version, id, &requests, this);
}

void FakeCompositor::makeInhibitor(wl_client* client, std::uint32_t id, FakeSurface* surface) {
    static constexpr struct zwp_idle_inhibitor_v1_interface requests {
        .destroy = wayland::destroy,
    };
    wl_resource* resource = make(
        client, zwp_idle_inhibitor_v1_interface, 1, id, &requests, this, [](wl_resource* gone) {
            std::erase_if(compositorOf(gone).inhibitors_,
                          [gone](const auto& one) { return one->resource == gone; });
        });
    inhibitors_.push_back(
        std::make_unique<Inhibitor>(Inhibitor{surface, resource, surface->isShown()}));
}

int FakeCompositor::effectiveInhibitors() const {
    return static_cast<int>(
        std::count_if(inhibitors_.begin(), inhibitors_.end(), [](const auto& one) {
            return one->hasBegun && one->surface && one->surface->isShown();
        }));
}

void FakeCompositor::addOutput(const FakeOutput& output) {
    outputs_.push_back(std::make_unique<FakeOutputGlobal>(display_, outputVersion_, output));
    flush();
}

FakeOutputGlobal* FakeCompositor::found(const QString& name) const {
    const auto match = std::find_if(outputs_.begin(), outputs_.end(),
                                    [&](const auto& one) { return one->values().name == name; });
    return match == outputs_.end() ? nullptr : match->get();
}

const FakeOutput* FakeCompositor::output(const QString& name) const {
    const FakeOutputGlobal* global = found(name);
    return global ? &global->values() : nullptr;
}

void FakeCompositor::changeOutput(const FakeOutput& output) {
    found(output.name)->change(output);
    flush();
}

void FakeCompositor::removeOutput(const QString& name) {
    std::erase_if(outputs_, [&](const auto& one) { return one->values().name == name; });
    for (FakeSurface* surface : layers()) {
        if (surface->outputName == name)
            surface->close();
    }
    flush();
}

void FakeCompositor::setKey(std::uint32_t key, std::uint32_t state) {
    keys_.at(key) = state;
    for (wl_resource* resource : keyStates_)
        org_kde_kwin_keystate_send_stateChanged(resource, key, state);
    flush();
}

void FakeCompositor::blame() {
    std::vector<wl_client*> clients;
    wl_client* client = nullptr;
    wl_client_for_each(client, wl_display_get_client_list(display_)) clients.push_back(client);
    for (wl_client* one : clients)
        wl_client_post_implementation_error(one, "blamed by the test");
    flush();
}

std::vector<FakeSurface*> FakeCompositor::layers() const {
    std::vector<FakeSurface*> layers;
    for (const auto& surface : surfaces_) {
        if (surface->hasRole())
            layers.push_back(surface.get());
    }
    return layers;
}

FakeSurface* FakeCompositor::layer() const {
    const std::vector<FakeSurface*> all = layers();
    return all.size() == 1 ? all.front() : nullptr;
}

void FakeCompositor::notePicture(wl_resource* buffer) {
    const bool isKnown = std::any_of(pictures_.begin(), pictures_.end(),
                                     [buffer](const auto& one) { return one->buffer == buffer; });
    if (!isKnown)
        pictures_.push_back(std::make_unique<Picture>(*this, buffer));
}

} // namespace tilewright::testing
