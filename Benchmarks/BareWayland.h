#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <cstdint>
#include <memory>
#include <wayland-client.h>

struct org_kde_kwin_keystate;
struct zwlr_layer_shell_v1;
struct zwlr_screencopy_manager_v1;

namespace tilewright::testing {

/// Memory that a bare client shares with the compositor, and the picture made of it.
struct BarePicture {
    std::uint32_t* pixels = nullptr;
    wl_buffer* buffer = nullptr;
};

/// As little as it takes to be a client of a compositor with one display: no checks, nothing given
/// back before the end of the process.
class BareWayland : public QObject {
    Q_OBJECT

public:
    explicit BareWayland(const QString& socketPath);
    ~BareWayland() override;

    wl_display* display = nullptr;
    wl_compositor* compositor = nullptr;
    wl_shm* sharedMemory = nullptr;
    wl_output* output = nullptr;
    zwlr_layer_shell_v1* layerShell = nullptr;
    zwlr_screencopy_manager_v1* screenCopies = nullptr;
    /// Null where the compositor tells of no keys.
    org_kde_kwin_keystate* keyStates = nullptr;

    [[nodiscard]] BarePicture makePicture(int width, int height, std::uint32_t format) const;

private:
    void add(std::uint32_t number, const char* interface, std::uint32_t version);

    wl_registry* registry_ = nullptr;
    std::unique_ptr<QSocketNotifier> readable_;
};

} // namespace tilewright::testing
