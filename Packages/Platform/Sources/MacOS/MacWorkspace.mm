#include "MacWorkspace.h"

#include "MacText.h"

#include <AppKit/AppKit.h>

namespace tilewright {

class MacWorkspace::Observation {
  public:
    explicit Observation(MacWorkspace& workspace) {
        MacWorkspace* const observed = &workspace;
        token_ = [[[NSWorkspace sharedWorkspace] notificationCenter]
            addObserverForName:NSWorkspaceDidActivateApplicationNotification
                        object:nil
                         queue:[NSOperationQueue mainQueue]
                    usingBlock:^(NSNotification*) {
                      Q_EMIT observed->activeWindowChanged();
                    }];
    }
    ~Observation() { [[[NSWorkspace sharedWorkspace] notificationCenter] removeObserver:token_]; }
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

  private:
    id token_ = nil;
};

MacWorkspace::MacWorkspace() : observation_(std::make_unique<Observation>(*this)) {}
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
