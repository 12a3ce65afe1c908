#pragma once

#include <Platform/Platform.h>

#include <memory>

namespace tilewright {

/// A session of Plasma on Wayland. What a client may not see or do there, a companion inside KWin
/// tells and does, which this program brings along; overlay and keys are between KWin and this
/// program, over a connection of its own. Needs Qt's application object, and has to end before it.
class PlasmaPlatform final : public Platform {
public:
    PlasmaPlatform();
    ~PlasmaPlatform() override;

    StatusItem& statusItem() override;
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override;
    std::unique_ptr<PanelSurface> makePanelSurface(PanelSurface::ViewFactory makeView,
                                                   std::unique_ptr<PanelChrome> chrome) override;

private:
    struct Parts;
    explicit PlasmaPlatform(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

} // namespace tilewright
