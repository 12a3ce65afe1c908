#include "BareWayland.h"

#include <LayerShell/WaylandListener.h>

#include <QFile>
#include <cstring>
#include <key-states-client.h>
#include <layer-shell-client.h>
#include <screen-copy-client.h>
#include <sys/mman.h>
#include <unistd.h>

namespace tilewright::testing {

BareWayland::BareWayland(const QString& socketPath)
    : display(wl_display_connect(QFile::encodeName(socketPath).constData())) {
    if (!display)
        qFatal("There is no compositor");
    registry_ = wl_display_get_registry(display);
    static constexpr wl_registry_listener events{
        .global = wayland::Call<&BareWayland::add>::on,
        .global_remove = wayland::ignore,
    };
    wl_registry_add_listener(registry_, &events, this);
    wl_display_roundtrip(display);
    readable_ =
        std::make_unique<QSocketNotifier>(wl_display_get_fd(display), QSocketNotifier::Read);
    connect(readable_.get(), &QSocketNotifier::activated, this, [this] {
        wl_display_dispatch(display);
        wl_display_flush(display);
    });
}

BareWayland::~BareWayland() {
    readable_.reset();
    wl_display_disconnect(display);
}

void BareWayland::add(std::uint32_t number, const char* interface, std::uint32_t offered) {
    const auto bind = [&](auto*& object, const wl_interface& wanted, std::uint32_t version) {
        if (std::strcmp(interface, wanted.name) == 0)
            object = static_cast<std::remove_reference_t<decltype(object)>>(
                wl_registry_bind(registry_, number, &wanted, version));
    };
    bind(compositor, wl_compositor_interface, 4);
    bind(sharedMemory, wl_shm_interface, 1);
    bind(output, wl_output_interface, 1);
    bind(layerShell, zwlr_layer_shell_v1_interface, 1);
    bind(screenCopies, zwlr_screencopy_manager_v1_interface, 2);
    // Older ones tell of locks alone.
    constexpr std::uint32_t withModifiers = 5;
    if (offered >= withModifiers)
        bind(keyStates, org_kde_kwin_keystate_interface, withModifiers);
}

BarePicture BareWayland::makePicture(int width, int height, std::uint32_t format) const {
    const auto size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    const int file = ::memfd_create("bare", MFD_CLOEXEC);
    if (::ftruncate(file, static_cast<off_t>(size)) != 0)
        qFatal("There is no memory");
    void* memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, off_t{0});
    wl_shm_pool* pool = wl_shm_create_pool(sharedMemory, file, static_cast<std::int32_t>(size));
    wl_buffer* buffer = wl_shm_pool_create_buffer(pool, 0, width, height, width * 4, format);
    wl_shm_pool_destroy(pool);
    ::close(file);
    return {static_cast<std::uint32_t*>(memory), buffer};
}

} // namespace tilewright::testing
