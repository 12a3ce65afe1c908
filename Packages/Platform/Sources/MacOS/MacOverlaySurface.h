#pragma once

#include "AppKitHostWindow.h"

#include <Platform/OverlaySurface.h>

#include <memory>

namespace tilewright {

/// The overlay as a borderless window of AppKit that holds the view. Main thread only.
class MacOverlaySurface final : public OverlaySurface {
public:
    /// The level of a screen saver: above normal, floating, Dock and menu bar windows.
    static constexpr qint64 level = 1000;
    /// Joins all spaces, stays where it is, is in no cycle of windows, may lie over full-screen
    /// applications.
    static constexpr quint64 collectionBehavior = 0x151;

    explicit MacOverlaySurface(std::shared_ptr<OverlayView> view);
    ~MacOverlaySurface() override;

    void setScreen(const ScreenPtr& screen) override;
    void orderFront() override;
    void orderOut() override;

private:
    std::shared_ptr<OverlayView> view_;
    std::unique_ptr<appkit::HostWindow> window_;
};

} // namespace tilewright
