#pragma once

#include <Companion/CompanionOutbox.h>
#include <Companion/CompanionScreens.h>
#include <Platform/Lifetime.h>
#include <Platform/OverlaySurface.h>

#include <memory>

namespace tilewright {

/// The overlay as the shell draws it, from plain values: above everything, and the pointer goes
/// through. Main thread only.
class GnomeOverlaySurface final : public OverlaySurface {
public:
    /// All but the view have to outlive the surface.
    GnomeOverlaySurface(const CompanionState& state, const CompanionScreens& screens,
                        CompanionOutbox& outbox, std::shared_ptr<OverlayView> view);
    ~GnomeOverlaySurface() override;

    void setScreen(const ScreenPtr& screen) override;
    void orderFront() override;
    void orderOut() override;

private:
    void show();

    const CompanionState& state_;
    const CompanionScreens& screens_;
    CompanionOutbox& outbox_;
    std::shared_ptr<OverlayView> view_;
    ScreenPtr screen_;
    bool isShown_ = false;
    Lifetime life_;
};

} // namespace tilewright
