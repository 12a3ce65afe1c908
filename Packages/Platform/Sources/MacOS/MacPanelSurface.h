#pragma once

#include <Platform/Platform.h>

namespace tilewright {

/// The panel of macOS: a popup. The services have to outlive it.
[[nodiscard]] std::unique_ptr<PanelSurface>
makeMacPanelSurface(const PlatformServices& services, PanelSurface::ViewFactory makeView,
                    std::unique_ptr<PanelChrome> chrome);

} // namespace tilewright
