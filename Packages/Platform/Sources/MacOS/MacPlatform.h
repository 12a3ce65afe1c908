#pragma once

#include <Platform/Platform.h>

#include <memory>

namespace tilewright {

/// The desktop of macOS. Needs Qt's application object and has to end before it.
class MacPlatform final : public Platform {
public:
    MacPlatform();
    ~MacPlatform() override;

    Screens& screens() override;
    Pointer& pointer() override;
    EventMonitors& eventMonitors() override;
    Accessibility& accessibility() override;
    Workspace& workspace() override;
    PowerAssertions& powerAssertions() override;
    UserDefaults& userDefaults() override;
    MainLoop& mainLoop() override;
    ApplicationSupport& applicationSupport() override;
    UserNotifications& userNotifications() override;
    InstanceActivation& instanceActivation() override;
    StatusItem& statusItem() override;
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tilewright
