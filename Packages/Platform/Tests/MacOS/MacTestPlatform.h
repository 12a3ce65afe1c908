#pragma once

#include "FakeAppKit.h"
#include "FakeMacSystem.h"

#include <FakeMainLoop.h>
#include <MacOS/IOKitPowerAssertions.h>
#include <MacOS/MacAccessibility.h>
#include <MacOS/MacAppearance.h>
#include <MacOS/MacApplicationSupport.h>
#include <MacOS/MacEventMonitors.h>
#include <MacOS/MacFocusReturn.h>
#include <MacOS/MacInstanceActivation.h>
#include <MacOS/MacKeyNames.h>
#include <MacOS/MacOverlaySurface.h>
#include <MacOS/MacPanelSurface.h>
#include <MacOS/MacPointer.h>
#include <MacOS/MacScreens.h>
#include <MacOS/MacStatusItem.h>
#include <MacOS/MacUserDefaults.h>
#include <MacOS/MacWorkspace.h>

namespace tilewright::testing {

/// The macOS backend's adapters over the fakes of the system, in a loop whose time tests advance.
struct MacTestParts {
    FakeMainLoop loop;
    MacScreens screens{loop};
    MacPointer pointer;
    MacAccessibility accessibility{loop};
    MacEventMonitors eventMonitors{accessibility};
    MacWorkspace workspace;
    MacAppearance appearance;
    IOKitPowerAssertions powerAssertions;
    MacUserDefaults userDefaults;
    MacApplicationSupport applicationSupport;
    MacInstanceActivation instanceActivation;
    MacKeyNames keyNames;
    MacFocusReturn focusReturn{loop, workspace};
    std::unique_ptr<MacStatusItem> statusItem;
};

/// The same as a platform.
class MacTestPlatform final : public Platform {
public:
    MacTestPlatform()
        : MacTestPlatform(std::make_unique<MacTestParts>()) {}

    MacStatusItem& statusItem() override {
        if (!parts_->statusItem)
            parts_->statusItem = std::make_unique<MacStatusItem>();
        return *parts_->statusItem;
    }
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override {
        return std::make_unique<MacOverlaySurface>(std::move(view));
    }
    std::unique_ptr<PanelSurface> makePanelSurface(PanelSurface::ViewFactory makeView,
                                                   std::unique_ptr<PanelChrome> chrome) override {
        return std::make_unique<MacPanelSurface>(*this, statusItem(), parts_->focusReturn,
                                                 std::move(makeView), std::move(chrome));
    }
    [[nodiscard]] FakeMainLoop& loop() { return parts_->loop; }

private:
    explicit MacTestPlatform(std::unique_ptr<MacTestParts> parts)
        : Platform({.screens = parts->screens,
                    .pointer = parts->pointer,
                    .eventMonitors = parts->eventMonitors,
                    .accessibility = parts->accessibility,
                    .workspace = parts->workspace,
                    .appearance = parts->appearance,
                    .powerAssertions = parts->powerAssertions,
                    .userDefaults = parts->userDefaults,
                    .mainLoop = parts->loop,
                    .applicationSupport = parts->applicationSupport,
                    .instanceActivation = parts->instanceActivation,
                    .keyNames = parts->keyNames})
        , parts_(std::move(parts)) {}

    std::unique_ptr<MacTestParts> parts_;
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
