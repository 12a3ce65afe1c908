#include "WaylandPanelSurface.h"

#include <utility>

namespace tilewright {

WaylandPanelSurface::WaylandPanelSurface(ViewFactory makeView, std::unique_ptr<PanelChrome> chrome)
    : makeView_(std::move(makeView))
    , chrome_(std::move(chrome)) {}

WaylandPanelSurface::~WaylandPanelSurface() = default;

QWidget* WaylandPanelSurface::window() const {
    return window_.get();
}

void WaylandPanelSurface::open(const Anchor&) {
    if (window_)
        return;
    window_ = std::make_unique<ToplevelPanelWindow>(makeView_(), *chrome_,
                                                    [this](PanelDismissal why) { dismiss(why); });
    window_->fit(QWIDGETSIZE_MAX);
    window_->show();
    window_->activateWindow();
    Q_EMIT opened();
}

void WaylandPanelSurface::close() {
    dismiss(PanelDismissal::request);
}

void WaylandPanelSurface::toggle(const Anchor& item) {
    // A press on the item takes no focus from the panel here.
    if (window_)
        close();
    else
        open(item);
}

void WaylandPanelSurface::dismiss(PanelDismissal why) {
    if (!window_)
        return;
    // Perhaps called by the window itself.
    window_.release()->retire();
    Q_EMIT dismissed(why);
}

} // namespace tilewright
