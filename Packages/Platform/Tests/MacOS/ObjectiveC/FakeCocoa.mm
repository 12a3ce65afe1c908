// AppKit's classes as far as the backend uses them.

#include "FakeCocoa.h"

#include "FakeObjects.h"

#include <AppKit/AppKit.h>
#include <FakeCoreFoundation.h>

#include <cstdio>
#include <cstdlib>

using namespace tilewright;
using namespace tilewright::testing;

// Their addresses stand for them; they are never sent anything.
#define NAME(constant) NSNotificationName const constant = (NSNotificationName)(void*)#constant
NAME(NSApplicationWillFinishLaunchingNotification);
NAME(NSApplicationDidChangeScreenParametersNotification);
NAME(NSWorkspaceDidActivateApplicationNotification);
NAME(NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification);

extern "C" {
void* _Block_copy(const void* block);
BOOL sel_isEqual(SEL one, SEL other);
}

namespace {

/// A block that outlives the call it was made for: like all objects here, to the end of the
/// process.
template <class Block> Block copyOf(Block block) { return (Block)_Block_copy((const void*)block); }

FakeCocoa* currentCocoa = nullptr;
FakeCocoa& cocoa() { return FakeCocoa::current(); }

/// The number behind an object, such as a display's place in the list.
std::map<FakeCocoa::Object, std::size_t> numbers;
std::map<FakeCocoa::Object, std::pair<quint64, quint64>> events;
std::map<FakeCocoa::Object, QByteArray> pictures;

id numbered(Class type, std::size_t number) {
    id made = [[type alloc] init];
    numbers[(void*)made] = number;
    return made;
}

FakeCocoa::Application& applicationOf(id application) {
    return cocoa().applications.at(numbers.at((void*)application));
}

/// The first application for which the condition holds; nil where there is none.
template <class Condition> NSRunningApplication* findApplication(Condition condition) {
    for (std::size_t i = 0; i < cocoa().applications.size(); ++i) {
        if (condition(cocoa().applications[i]))
            return numbered([NSRunningApplication class], i);
    }
    return nil;
}

NSEvent* makeEvent(quint64 type, quint64 flags) {
    NSEvent* made = [[NSEvent alloc] init];
    events[(void*)made] = {type, flags};
    return made;
}

} // namespace

namespace tilewright::testing {

NSRect toNative(const AppKitRect& rect) {
    return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}
AppKitRect fromNative(NSRect rect) {
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

FakeCocoa::FakeCocoa() {
    currentCocoa = this;
    endProcessOnUnknownSelectors();
}
FakeCocoa::~FakeCocoa() { currentCocoa = nullptr; }

FakeCocoa& FakeCocoa::current() {
    if (!currentCocoa) {
        std::fputs("there is no Cocoa\n", stderr);
        std::abort();
    }
    return *currentCocoa;
}

bool FakeCocoa::send(bool isGlobal, quint64 type, quint64 flags) {
    bool isPassedOn = true;
    const auto copy = monitors;
    for (const auto& [object, monitor] : copy) {
        if (monitor.isGlobal == isGlobal && (monitor.mask >> type & 1) &&
            monitors.at(object).isInstalled)
            isPassedOn = monitor.call(type, flags) && isPassedOn;
    }
    return isPassedOn;
}

void FakeCocoa::announce(Center center, const std::string& name) {
    const auto copy = observers;
    for (const Observer& observer : copy) {
        // A program that is not the active one hears of other processes only what it asked for so.
        if (observer.center == center && observer.name == name &&
            (center != Center::distributed || observer.suspension == 4))
            observer.call();
    }
}

FakeCocoa::Object FakeCocoa::makeViewOfQt() {
    NSWindow* window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 10, 10)
                                                   styleMask:NSWindowStyleMaskBorderless
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    NSView* view = [[NSView alloc] init];
    [window setContentView:view];
    return (void*)view;
}

} // namespace tilewright::testing

@implementation NSColor
+ (NSColor*)clearColor {
    return sharedObject(self);
}
@end

@implementation NSScreen
+ (NSArray<NSScreen*>*)screens {
    std::vector<id> all;
    for (std::size_t i = 0; i < cocoa().displays.size(); ++i)
        all.push_back(numbered(self, i));
    return makeArray(all);
}
+ (NSScreen*)mainScreen {
    return cocoa().mainDisplay ? numbered(self, *cocoa().mainDisplay) : nil;
}
- (NSRect)frame {
    return toNative(cocoa().displays.at(numbers.at((void*)self)).frame);
}
- (NSRect)visibleFrame {
    return toNative(cocoa().displays.at(numbers.at((void*)self)).visibleFrame);
}
- (NSDictionary*)deviceDescription {
    // The same object to Core Foundation, which is how the backend reads it.
    const CFTypeRef number =
        fakecf::makeNumber(cocoa().displays.at(numbers.at((void*)self)).number);
    const CFTypeRef key = fakecf::makeString(QStringLiteral("NSScreenNumber"));
    const void* keys[] = {key};
    const void* values[] = {number};
    return (NSDictionary*)CFDictionaryCreate(kCFAllocatorDefault, keys, values, 1,
                                             &kCFTypeDictionaryKeyCallBacks,
                                             &kCFTypeDictionaryValueCallBacks);
}
- (NSString*)localizedName {
    return makeText(cocoa().displays.at(numbers.at((void*)self)).name);
}
@end

@implementation NSEvent
+ (NSPoint)mouseLocation {
    return CGPointMake(cocoa().mouse.x, cocoa().mouse.y);
}
- (NSEventType)type {
    return NSEventType(events.at((void*)self).first);
}
- (NSEventModifierFlags)modifierFlags {
    return NSEventModifierFlags(events.at((void*)self).second);
}
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))block {
    auto copied = copyOf(block);
    id token = [[NSObject alloc] init];
    cocoa().monitors[(void*)token] = {true, mask, true, [copied](quint64 type, quint64 flags) {
                                          copied(makeEvent(type, flags));
                                          return true;
                                      }};
    return token;
}
+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(NSEvent* (^)(NSEvent*))block {
    auto copied = copyOf(block);
    id token = [[NSObject alloc] init];
    cocoa().monitors[(void*)token] = {false, mask, true, [copied](quint64 type, quint64 flags) {
                                          NSEvent* event = makeEvent(type, flags);
                                          return copied(event) == event;
                                      }};
    return token;
}
+ (void)removeMonitor:(id)monitor {
    cocoa().monitors.at((void*)monitor).isInstalled = false;
}
@end

@implementation NSRunningApplication
+ (instancetype)runningApplicationWithProcessIdentifier:(pid_t)process {
    return findApplication([process](const auto& known) { return known.process == process; });
}
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)identifier {
    std::vector<id> found;
    for (std::size_t i = 0; i < cocoa().applications.size(); ++i) {
        if (cocoa().applications[i].bundle == textOf(identifier))
            found.push_back(numbered(self, i));
    }
    return makeArray(found);
}
- (pid_t)processIdentifier {
    return pid_t(applicationOf(self).process);
}
- (NSString*)localizedName {
    const auto& name = applicationOf(self).name;
    return name ? makeText(*name) : nil;
}
- (NSDate*)launchDate {
    const auto& launchedAt = applicationOf(self).launchedAt;
    return launchedAt ? makeDate(*launchedAt) : nil;
}
- (BOOL)isTerminated {
    return applicationOf(self).isTerminated;
}
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options {
    applicationOf(self).activations.push_back(options);
    return YES;
}
@end

@implementation NSWorkspace
+ (NSWorkspace*)sharedWorkspace {
    return sharedObject(self);
}
- (NSRunningApplication*)frontmostApplication {
    return findApplication([](const auto& known) { return known.process == cocoa().frontmost; });
}
- (NSNotificationCenter*)notificationCenter {
    static NSNotificationCenter* const center = [[NSNotificationCenter alloc] init];
    return center;
}
- (BOOL)accessibilityDisplayShouldReduceMotion {
    return cocoa().reducesMotion;
}
- (BOOL)openURL:(NSURL*)url {
    cocoa().openedURLs.push_back(linkOf(url));
    return YES;
}
@end

@implementation NSApplication
+ (NSApplication*)sharedApplication {
    return sharedObject(self);
}
- (void)activateIgnoringOtherApps:(BOOL)ignoringOtherApps {
    if (ignoringOtherApps)
        ++cocoa().forcedActivations;
}
- (BOOL)respondsToSelector:(SEL)selector {
    if (sel_isEqual(selector, @selector(yieldActivationToApplication:)))
        return cocoa().asksTheActiveApplication;
    return [super respondsToSelector:selector];
}
- (void)yieldActivationToApplication:(NSRunningApplication*)application {
    cocoa().madeRoomFor.push_back(applicationOf(application).process);
}
@end

@implementation NSImage
- (instancetype)initWithData:(NSData*)data {
    pictures[(void*)self] = bytesOf(data);
    return self;
}
- (void)setSize:(NSSize)size {
    cocoa().item->imageSize = {size.width, size.height};
}
- (void)setTemplate:(BOOL)isTemplate {
    cocoa().item->isTemplate = isTemplate;
}
@end

@implementation NSButton
- (void)setTarget:(id)target {
    if (!target)
        cocoa().item->click = nullptr;
    numbers[(void*)self] = reinterpret_cast<std::size_t>((void*)target);
}
- (void)setAction:(SEL)action {
    id target = (id) reinterpret_cast<void*>(numbers.at((void*)self));
    cocoa().item->click = [self, target, action] { call(target, action, self); };
}
- (void)setImage:(NSImage*)image {
    cocoa().item->image = pictures.at((void*)image);
}
- (void)highlight:(BOOL)flag {
    cocoa().item->isHighlighted = flag;
}
- (void)setAccessibilityLabel:(NSString*)label {
    cocoa().item->label = textOf(label);
}
- (void)setToolTip:(NSString*)text {
    cocoa().item->toolTip = textOf(text);
}
- (NSWindow*)window {
    if (!cocoa().item->place)
        return nil;
    // A window with a margin around the button, in which the button has a place of its own.
    AppKitRect place = *cocoa().item->place;
    [self setFrame:NSMakeRect(3, 2, place.width, place.height)];
    NSWindow* window = sharedObject([NSWindow class]);
    cocoa().windows[(void*)window].frame = {place.x - 3, place.y - 2, place.width + 6,
                                            place.height + 4};
    return window;
}
@end

@implementation NSStatusItem
- (NSButton*)button {
    NSButton* button = sharedObject([NSButton class]);
    cocoa().views.try_emplace((void*)button);
    return button;
}
@end

@implementation NSStatusBar
+ (NSStatusBar*)systemStatusBar {
    return sharedObject(self);
}
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    cocoa().item.emplace().length = length;
    return sharedObject([NSStatusItem class]);
}
- (void)removeStatusItem:(NSStatusItem*)item {
    if (item == sharedObject([NSStatusItem class]))
        cocoa().item->isInBar = false;
}
@end
