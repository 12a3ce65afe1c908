#include "MacPlatform.h"

#include "IOKitPowerAssertions.h"
#include "MacAccessibility.h"
#include "MacAppearance.h"
#include "MacApplicationSupport.h"
#include "MacEditMenu.h"
#include "MacEventMonitors.h"
#include "MacFocusReturn.h"
#include "MacInstanceActivation.h"
#include "MacKeyNames.h"
#include "MacOverlaySurface.h"
#include "MacPanelSurface.h"
#include "MacPointer.h"
#include "MacScreens.h"
#include "MacUserDefaults.h"
#include "MacWorkspace.h"

#include <Platform/QtMainLoop.h>

namespace tilewright {

struct MacPlatform::Parts {
    QtMainLoop mainLoop;
    MacScreens screens{mainLoop};
    MacPointer pointer;
    MacAccessibility accessibility{mainLoop};
    MacEventMonitors eventMonitors{accessibility};
    MacWorkspace workspace;
    MacAppearance appearance;
    IOKitPowerAssertions powerAssertions;
    MacUserDefaults userDefaults;
    MacApplicationSupport applicationSupport;
    MacInstanceActivation instanceActivation;
    MacKeyNames keyNames;
    MacFocusReturn focusReturn{mainLoop, workspace};
    std::unique_ptr<MacStatusItem> statusItem;
    MacEditMenu editMenu;

    [[nodiscard]] PlatformServices services() {
        return {.screens = screens,
                .pointer = pointer,
                .eventMonitors = eventMonitors,
                .accessibility = accessibility,
                .workspace = workspace,
                .appearance = appearance,
                .powerAssertions = powerAssertions,
                .userDefaults = userDefaults,
                .mainLoop = mainLoop,
                .applicationSupport = applicationSupport,
                .instanceActivation = instanceActivation,
                .keyNames = keyNames};
    }
};

MacPlatform::MacPlatform()
    : MacPlatform(std::make_unique<Parts>()) {}
MacPlatform::MacPlatform(std::unique_ptr<Parts> parts)
    : Platform(parts->services())
    , parts_(std::move(parts)) {}
MacPlatform::~MacPlatform() = default;

MacStatusItem& MacPlatform::statusItem() {
    if (!parts_->statusItem)
        parts_->statusItem = std::make_unique<MacStatusItem>();
    return *parts_->statusItem;
}
std::unique_ptr<OverlaySurface> MacPlatform::makeOverlaySurface(std::shared_ptr<OverlayView> view) {
    return std::make_unique<MacOverlaySurface>(std::move(view));
}
std::unique_ptr<PanelSurface> MacPlatform::makePanelSurface(PanelSurface::ViewFactory makeView,
                                                            std::unique_ptr<PanelChrome> chrome) {
    return std::make_unique<MacPanelSurface>(*this, statusItem(), parts_->focusReturn,
                                             std::move(makeView), std::move(chrome));
}

} // namespace tilewright
