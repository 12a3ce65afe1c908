#pragma once

#include "MacStatusItem.h"

#include <Platform/Platform.h>

#include <memory>

namespace tilewright {

/// The desktop of macOS. Needs Qt's application object and has to end before it.
class MacPlatform final : public Platform {
public:
    MacPlatform();
    ~MacPlatform() override;

    MacStatusItem& statusItem() override;
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override;
    std::unique_ptr<PanelSurface> makePanelSurface(PanelSurface::ViewFactory makeView,
                                                   std::unique_ptr<PanelChrome> chrome) override;

private:
    struct Parts;
    explicit MacPlatform(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

} // namespace tilewright
