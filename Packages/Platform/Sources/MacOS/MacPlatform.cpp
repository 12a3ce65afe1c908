#include "MacPlatform.h"

#include "IOKitPowerAssertions.h"
#include "MacAccessibility.h"
#include "MacApplicationSupport.h"
#include "MacEditMenu.h"
#include "MacEventMonitors.h"
#include "MacInstanceActivation.h"
#include "MacOverlaySurface.h"
#include "MacPointer.h"
#include "MacScreens.h"
#include "MacStatusItem.h"
#include "MacUserDefaults.h"
#include "MacUserNotifications.h"
#include "MacWorkspace.h"

#include <Platform/QtMainLoop.h>

namespace tilewright {

struct MacPlatform::Parts {
    QtMainLoop mainLoop;
    MacScreens screens{mainLoop};
    MacPointer pointer;
    MacAccessibility accessibility;
    MacEventMonitors eventMonitors{accessibility, mainLoop};
    MacWorkspace workspace;
    IOKitPowerAssertions powerAssertions;
    MacUserDefaults userDefaults;
    MacApplicationSupport applicationSupport;
    MacUserNotifications userNotifications;
    MacInstanceActivation instanceActivation;
    std::unique_ptr<MacStatusItem> statusItem;
    MacEditMenu editMenu;
};

MacPlatform::MacPlatform()
    : parts_(std::make_unique<Parts>()) {}
MacPlatform::~MacPlatform() = default;

Screens& MacPlatform::screens() {
    return parts_->screens;
}
Pointer& MacPlatform::pointer() {
    return parts_->pointer;
}
EventMonitors& MacPlatform::eventMonitors() {
    return parts_->eventMonitors;
}
Accessibility& MacPlatform::accessibility() {
    return parts_->accessibility;
}
Workspace& MacPlatform::workspace() {
    return parts_->workspace;
}
PowerAssertions& MacPlatform::powerAssertions() {
    return parts_->powerAssertions;
}
UserDefaults& MacPlatform::userDefaults() {
    return parts_->userDefaults;
}
MainLoop& MacPlatform::mainLoop() {
    return parts_->mainLoop;
}
ApplicationSupport& MacPlatform::applicationSupport() {
    return parts_->applicationSupport;
}
UserNotifications& MacPlatform::userNotifications() {
    return parts_->userNotifications;
}
InstanceActivation& MacPlatform::instanceActivation() {
    return parts_->instanceActivation;
}
StatusItem& MacPlatform::statusItem() {
    if (!parts_->statusItem)
        parts_->statusItem = std::make_unique<MacStatusItem>();
    return *parts_->statusItem;
}
std::unique_ptr<OverlaySurface> MacPlatform::makeOverlaySurface(std::shared_ptr<OverlayView> view) {
    return std::make_unique<MacOverlaySurface>(std::move(view));
}

} // namespace tilewright
