#include "AppKitApplications.h"

#include "MacText.h"

#include <AppKit/AppKit.h>

namespace tilewright::appkit {

std::optional<ProcessID> frontmostApplication() {
    NSRunningApplication* application = [[NSWorkspace sharedWorkspace] frontmostApplication];
    if (!application)
        return std::nullopt;
    return [application processIdentifier];
}

std::optional<QString> localizedNameOf(ProcessID process) {
    NSRunningApplication* application =
        [NSRunningApplication runningApplicationWithProcessIdentifier:static_cast<pid_t>(process)];
    NSString* name = [application localizedName];
    if (!name)
        return std::nullopt;
    return toQString(name);
}

void openURL(const QString& url) {
    NSURL* link = [NSURL URLWithString:toNSString(url)];
    if (link)
        [[NSWorkspace sharedWorkspace] openURL:link];
}

void activateThisApplication() {
    [[NSApplication sharedApplication] activateIgnoringOtherApps:YES];
}

void activateApplication(ProcessID process) {
    NSRunningApplication* application =
        [NSRunningApplication runningApplicationWithProcessIdentifier:static_cast<pid_t>(process)];
    if (!application)
        return;
    // From macOS 14 on no application comes forward that the active one does not make room for. The
    // headers of older systems do not declare it.
    NSApplication* own = [NSApplication sharedApplication];
    if ([own respondsToSelector:@selector(yieldActivationToApplication:)])
        [own performSelector:@selector(yieldActivationToApplication:) withObject:application];
    [application activateWithOptions:NSApplicationActivateIgnoringOtherApps];
}

bool prefersReducedMotion() {
    return [[NSWorkspace sharedWorkspace] accessibilityDisplayShouldReduceMotion];
}

std::vector<RunningInstance> runningInstances() {
    NSString* identifier = [[NSBundle mainBundle] bundleIdentifier];
    if (!identifier)
        return {};
    NSArray<NSRunningApplication*>* applications =
        [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier];
    std::vector<RunningInstance> instances;
    instances.reserve([applications count]);
    for (NSUInteger i = 0; i < [applications count]; ++i) {
        NSRunningApplication* application = [applications objectAtIndex:i];
        if ([application isTerminated])
            continue;
        RunningInstance instance{[application processIdentifier]};
        if (NSDate* launch = [application launchDate])
            instance.launchedAt = [launch timeIntervalSinceReferenceDate];
        instances.push_back(instance);
    }
    return instances;
}

} // namespace tilewright::appkit
