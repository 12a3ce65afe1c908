#pragma once

#include <Platform/OverlaySurface.h>

#include <memory>

namespace tilewright {

/// The overlay as a borderless window of AppKit that holds the view. Main thread only.
class MacOverlaySurface final : public OverlaySurface {
public:
    explicit MacOverlaySurface(std::shared_ptr<OverlayView> view);
    ~MacOverlaySurface() override;

    void setScreen(const ScreenPtr& screen) override;
    void orderFront() override;
    void orderOut() override;

private:
    struct Window;

    std::shared_ptr<OverlayView> view_;
    std::unique_ptr<Window> window_;
};

} // namespace tilewright
