#include "MacAppearance.h"

#include "AppKitApplications.h"
#include "AppKitNotifications.h"

namespace tilewright {

MacAppearance::MacAppearance()
    : displayOptions_(appkit::observe(appkit::Notification::displayOptionsChanged,
                                      [this] { Q_EMIT prefersReducedMotionChanged(); })) {}

MacAppearance::~MacAppearance() = default;

std::optional<bool> MacAppearance::prefersReducedMotion() const {
    return appkit::prefersReducedMotion();
}

} // namespace tilewright
