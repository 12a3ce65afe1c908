#include "MacWorkspace.h"

#include "AppKitNotifications.h"
#include "MacText.h"

#include <AppKit/AppKit.h>

namespace tilewright {

MacWorkspace::MacWorkspace()
    : observation_(appkit::observe(appkit::Notification::applicationActivated,
                                   [this] { Q_EMIT activeWindowChanged(); })) {}
MacWorkspace::~MacWorkspace() = default;

std::optional<ProcessID> MacWorkspace::frontmostApplication() const {
    NSRunningApplication* application = [[NSWorkspace sharedWorkspace] frontmostApplication];
    if (!application)
        return std::nullopt;
    return [application processIdentifier];
}

std::optional<QString> MacWorkspace::localizedName(ProcessID process) const {
    NSRunningApplication* application =
        [NSRunningApplication runningApplicationWithProcessIdentifier:static_cast<pid_t>(process)];
    NSString* name = [application localizedName];
    if (!name)
        return std::nullopt;
    return toQString(name);
}

void MacWorkspace::openAccessibilitySettings() {
    NSURL* pane = [NSURL
        URLWithString:toNSString(QStringLiteral("x-apple.systempreferences:com.apple.preference."
                                                "security?Privacy_Accessibility"))];
    if (pane)
        [[NSWorkspace sharedWorkspace] openURL:pane];
}

void MacWorkspace::activateThisApplication() {
    [[NSApplication sharedApplication] activateIgnoringOtherApps:YES];
}

} // namespace tilewright
