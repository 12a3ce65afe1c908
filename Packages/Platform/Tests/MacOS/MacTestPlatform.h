#pragma once

#include "FakeAppKit.h"
#include "FakeMacSystem.h"

#include <FakeMainLoop.h>
#include <MacOS/IOKitPowerAssertions.h>
#include <MacOS/MacAccessibility.h>
#include <MacOS/MacApplicationSupport.h>
#include <MacOS/MacEventMonitors.h>
#include <MacOS/MacInstanceActivation.h>
#include <MacOS/MacOverlaySurface.h>
#include <MacOS/MacPointer.h>
#include <MacOS/MacScreens.h>
#include <MacOS/MacStatusItem.h>
#include <MacOS/MacUserDefaults.h>
#include <MacOS/MacUserNotifications.h>
#include <MacOS/MacWorkspace.h>

namespace tilewright::testing {

/// The macOS backend's adapters over the fakes of the system, in a loop whose time tests advance.
class MacTestPlatform final : public Platform {
public:
    MacScreens& screens() override { return screens_; }
    MacPointer& pointer() override { return pointer_; }
    MacEventMonitors& eventMonitors() override { return eventMonitors_; }
    MacAccessibility& accessibility() override { return accessibility_; }
    MacWorkspace& workspace() override { return workspace_; }
    IOKitPowerAssertions& powerAssertions() override { return powerAssertions_; }
    MacUserDefaults& userDefaults() override { return userDefaults_; }
    FakeMainLoop& mainLoop() override { return loop_; }
    MacApplicationSupport& applicationSupport() override { return applicationSupport_; }
    MacUserNotifications& userNotifications() override { return userNotifications_; }
    MacInstanceActivation& instanceActivation() override { return instanceActivation_; }
    MacStatusItem& statusItem() override {
        if (!statusItem_)
            statusItem_ = std::make_unique<MacStatusItem>();
        return *statusItem_;
    }
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override {
        return std::make_unique<MacOverlaySurface>(std::move(view));
    }

private:
    FakeMainLoop loop_;
    MacScreens screens_{loop_};
    MacPointer pointer_;
    MacAccessibility accessibility_;
    MacEventMonitors eventMonitors_{accessibility_, loop_};
    MacWorkspace workspace_;
    IOKitPowerAssertions powerAssertions_;
    MacUserDefaults userDefaults_;
    MacApplicationSupport applicationSupport_;
    MacUserNotifications userNotifications_;
    MacInstanceActivation instanceActivation_;
    std::unique_ptr<MacStatusItem> statusItem_;
};

/// A display of AppKit's list; its visible frame is its frame less a bar at the top.
[[nodiscard]] inline appkit::ScreenFacts makeFacts(AppKitRect frame, quint32 displayID = 1,
                                                   double bar = 0) {
    return {frame,
            {frame.x, frame.y, frame.width, frame.height - bar},
            displayID,
            QStringLiteral("Display %1").arg(displayID)};
}

/// The system and AppKit, faked, and the backend's adapters over them, installed.
struct MacDesktop {
    FakeMacSystem system;
    FakeAppKit appKit;
    MacTestPlatform platform;
    Platform::Installation installation{platform};
};

} // namespace tilewright::testing
