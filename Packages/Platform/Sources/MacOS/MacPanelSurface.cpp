#include "MacPanelSurface.h"

#include <Popup/PopupPanelSurface.h>

namespace tilewright {

std::unique_ptr<PanelSurface> makeMacPanelSurface(const PlatformServices& services,
                                                  PanelSurface::ViewFactory makeView,
                                                  std::unique_ptr<PanelChrome> chrome) {
    // Monitors are told of an event before anybody acts on it: the end of the turn is late enough.
    auto barrier = [&loop = services.mainLoop](std::function<void()> then) {
        loop.post(std::move(then));
    };
    return std::make_unique<PopupPanelSurface>(services, std::move(barrier), std::move(makeView),
                                               std::move(chrome));
}

} // namespace tilewright
