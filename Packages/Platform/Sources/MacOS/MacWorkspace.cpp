#include "MacWorkspace.h"

#include "AppKitApplications.h"
#include "AppKitNotifications.h"

#include <unistd.h>

namespace tilewright {

MacWorkspace::MacWorkspace()
    : observation_(appkit::observe(appkit::Notification::applicationActivated, [this] {
        // The panel may bring this application forward: that is no
        // reason to close it.
        if (noteFrontmost())
            Q_EMIT activeWindowChanged();
    })) {
    noteFrontmost();
}

MacWorkspace::~MacWorkspace() = default;

bool MacWorkspace::noteFrontmost() const {
    const std::optional<ProcessID> frontmost = appkit::frontmostApplication();
    if (frontmost == getpid())
        return false;
    lastOther_ = frontmost;
    return true;
}

std::optional<ProcessID> MacWorkspace::frontmostApplication() const {
    noteFrontmost();
    return lastOther_;
}

std::optional<QString> MacWorkspace::localizedName(ProcessID process) const {
    return appkit::localizedNameOf(process);
}

void MacWorkspace::openAccessibilitySettings() {
    appkit::openURL(QStringLiteral("x-apple.systempreferences:com.apple.preference.security"
                                   "?Privacy_Accessibility"));
}

void MacWorkspace::activateThisApplication() {
    appkit::activateThisApplication();
}

void MacWorkspace::returnToFormerApplication() {
    if (lastOther_ && !noteFrontmost())
        appkit::activateApplication(*lastOther_);
}

} // namespace tilewright
