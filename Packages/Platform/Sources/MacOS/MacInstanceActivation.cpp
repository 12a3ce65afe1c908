#include "MacInstanceActivation.h"

#include "AppKitApplications.h"
#include "AppKitNotifications.h"

namespace tilewright {

MacInstanceActivation::MacInstanceActivation() = default;
MacInstanceActivation::~MacInstanceActivation() = default;

InstanceActivation::Claim MacInstanceActivation::claim() {
    if (appkit::runningInstances() > 1) {
        appkit::requestPanel();
        return Claim::another;
    }
    observation_ = appkit::observe(appkit::Notification::panelRequested,
                                   [this] { Q_EMIT activationRequested(); });
    return Claim::first;
}

} // namespace tilewright
