#include "MenuBarExtra.h"

#include "RoundedPanelChrome.h"

#include <Platform/Platform.h>

namespace tilewright {

MenuBarExtra::MenuBarExtra(PanelSurface::ViewFactory makeView)
    : panel_(Platform::current().makePanelSurface(std::move(makeView),
                                                  std::make_unique<RoundedPanelChrome>())) {
    Platform& platform = Platform::current();
    connect(&platform.statusItem(), &StatusItem::activated, panel_.get(), &PanelSurface::toggle);
    connect(&platform.instanceActivation, &InstanceActivation::activationRequested, panel_.get(),
            [this] { panel_->open(std::nullopt); });
}

MenuBarExtra::~MenuBarExtra() = default;

} // namespace tilewright
