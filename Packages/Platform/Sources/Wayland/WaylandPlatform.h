#pragma once

#include <Platform/Platform.h>

#include <memory>

namespace tilewright {

/// A Wayland session whose compositor has no backend here, without an X server beside it. Other
/// applications' windows and input are out of reach, so it is never trusted; panel, settings and
/// keep-awake work. Needs Qt's application object, running on Wayland, and has to end before it.
class WaylandPlatform final : public Platform {
public:
    WaylandPlatform();
    ~WaylandPlatform() override;

    StatusItem& statusItem() override;
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override;
    std::unique_ptr<PanelSurface> makePanelSurface(PanelSurface::ViewFactory makeView,
                                                   std::unique_ptr<PanelChrome> chrome) override;

private:
    struct Parts;
    explicit WaylandPlatform(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

} // namespace tilewright
