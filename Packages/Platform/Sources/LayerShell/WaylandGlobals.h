#pragma once

#include "WaylandObject.h"

#include <QByteArray>
#include <cstdint>

namespace tilewright {

/// Something that a compositor offers to every client.
struct WaylandOffer {
    /// Its number in the compositor's list; no other offer has it.
    std::uint32_t number = 0;
    QByteArray interface;
    std::uint32_t version = 0;
};

/// What there is at most one of in a compositor, as this program uses it; null where it is not
/// offered.
struct WaylandGlobals {
    WaylandObject<wl_compositor> compositor;
    WaylandObject<wl_shm> sharedMemory;
    WaylandObject<wp_viewporter> viewporter;
    WaylandObject<wp_fractional_scale_manager_v1> fractionalScales;
    WaylandObject<zwlr_layer_shell_v1> layerShell;
    WaylandObject<zwp_idle_inhibit_manager_v1> idleInhibition;
    WaylandObject<zxdg_output_manager_v1> outputManager;

    /// Whether surfaces can be shown above everything.
    [[nodiscard]] bool canShowLayers() const { return compositor && sharedMemory && layerShell; }
};

} // namespace tilewright
