#pragma once

#include "BareWayland.h"

#include <QSize>
#include <cstdint>

struct zwlr_layer_surface_v1;

namespace tilewright::testing {

/// One colour over all of a display, in a surface made for each showing.
class BareLayer {
public:
    explicit BareLayer(const QString& socketPath)
        : wayland_(socketPath) {}

    /// Shows the colour, premultiplied, with its opacity in the highest bits.
    void show(std::uint32_t color);
    /// Shows it as soon as the compositor tells of the control key being pressed. False where the
    /// compositor tells of no keys.
    [[nodiscard]] bool showAtControl(std::uint32_t color);
    /// Fills all of what is shown with another colour.
    void fill(std::uint32_t color);
    void hide();

private:
    void takeKey(std::uint32_t key, std::uint32_t state);
    void configure(std::uint32_t serial, std::uint32_t width, std::uint32_t height);

    BareWayland wayland_;
    wl_surface* surface_ = nullptr;
    zwlr_layer_surface_v1* layer_ = nullptr;
    BarePicture picture_;
    QSize size_;
    std::uint32_t color_ = 0;
    bool isShownAtControl_ = false;
};

} // namespace tilewright::testing
