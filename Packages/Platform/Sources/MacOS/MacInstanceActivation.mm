#include "MacInstanceActivation.h"

#include "AppKitNotifications.h"

#include <AppKit/AppKit.h>

namespace tilewright {

MacInstanceActivation::MacInstanceActivation() = default;
MacInstanceActivation::~MacInstanceActivation() = default;

InstanceActivation::Claim MacInstanceActivation::claim() {
    NSString* identifier = [[NSBundle mainBundle] bundleIdentifier];
    // A program started outside its bundle has no identifier to look for.
    const NSUInteger running =
        identifier
            ? [[NSRunningApplication runningApplicationsWithBundleIdentifier:identifier] count]
            : 0;
    if (running > 1) {
        appkit::requestPanel();
        return Claim::another;
    }
    observation_ = appkit::observe(appkit::Notification::panelRequested,
                                   [this] { Q_EMIT activationRequested(); });
    return Claim::first;
}

} // namespace tilewright
