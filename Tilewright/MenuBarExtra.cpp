#include "MenuBarExtra.h"

#include "RoundedPanelChrome.h"

#include <Platform/Platform.h>
#include <TilewrightUI/FocusVisibility.h>

namespace tilewright {

MenuBarExtra::MenuBarExtra(PanelSurface::ViewFactory makeView)
    : panel_(Platform::current().makePanelSurface(
          [this, makeView = std::move(makeView)] { return keep(makeView()); },
          std::make_unique<RoundedPanelChrome>())) {
    Platform& platform = Platform::current();
    connect(panel_.get(), &PanelSurface::opened, this, [this] {
        if (means_ == Means::keyboard && view_)
            look::focusFirstControl(*view_);
    });
    // A click has a place; assistive tools, and bars that are used by keyboard, may tell none.
    connect(&platform.statusItem(), &StatusItem::activated, panel_.get(),
            [this](const std::optional<AppKitRect>& place) {
                means_ = place ? Means::pointer : Means::keyboard;
                panel_->toggle(place);
            });
    connect(&platform.instanceActivation, &InstanceActivation::activationRequested, panel_.get(),
            [this] {
                means_ = Means::keyboard;
                panel_->open(std::nullopt);
            });
}

std::unique_ptr<QWidget> MenuBarExtra::keep(std::unique_ptr<QWidget> view) {
    view_ = view.get();
    return view;
}

MenuBarExtra::~MenuBarExtra() = default;

} // namespace tilewright
