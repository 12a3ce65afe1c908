// AppKit's views and windows as far as the backend uses them.

#include "FakeObjects.h"

#include <AppKit/AppKit.h>

#include <cstdlib>

using namespace tilewright;
using namespace tilewright::testing;

namespace {
FakeCocoa& cocoa() { return FakeCocoa::current(); }
} // namespace

@implementation NSResponder
@end

@implementation NSView
- (instancetype)init {
    cocoa().views[(void*)self] = {};
    return self;
}
- (NSRect)frame {
    return toNative(cocoa().views.at((void*)self).frame);
}
- (void)setFrame:(NSRect)frame {
    cocoa().views.at((void*)self).frame = fromNative(frame);
}
- (NSRect)bounds {
    const NSRect frame = [self frame];
    return NSMakeRect(0, 0, frame.size.width, frame.size.height);
}
- (NSAutoresizingMaskOptions)autoresizingMask {
    return NSAutoresizingMaskOptions(cocoa().views.at((void*)self).autoresizing);
}
- (void)setAutoresizingMask:(NSAutoresizingMaskOptions)mask {
    cocoa().views.at((void*)self).autoresizing = mask;
}
- (NSWindow*)window {
    return (NSWindow*)(void*)cocoa().views.at((void*)self).window;
}
- (void)addSubview:(NSView*)view {
    [view removeFromSuperview];
    cocoa().views.at((void*)view).superview = (void*)self;
    cocoa().views.at((void*)view).window = cocoa().views.at((void*)self).window;
}
- (void)removeFromSuperview {
    cocoa().views.at((void*)self).superview = nullptr;
    cocoa().views.at((void*)self).window = nullptr;
}
- (NSRect)convertRect:(NSRect)rect toView:(NSView*)view {
    if (view)
        std::abort();
    const NSRect frame = [self frame];
    return NSMakeRect(frame.origin.x + rect.origin.x, frame.origin.y + rect.origin.y,
                      rect.size.width, rect.size.height);
}
@end

@implementation NSWindow
- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer {
    FakeCocoa::Window window;
    window.isPanel = [self isKindOfClass:[NSPanel class]];
    window.hidesOnDeactivate = window.isPanel;
    window.frame = fromNative(rect);
    window.styleMask = style;
    window.backing = backing;
    window.defer = defer;
    NSView* content = [[NSView alloc] init];
    cocoa().views.at((void*)content) = {
        {0, 0, rect.size.width, rect.size.height}, 0, nullptr, (void*)self};
    window.contentView = (void*)content;
    cocoa().windows[(void*)self] = window;
    cocoa().lastWindowMade = (void*)self;
    return self;
}
- (NSView*)contentView {
    return (NSView*)(void*)cocoa().windows.at((void*)self).contentView;
}
- (void)setContentView:(NSView*)view {
    auto& window = cocoa().windows.at((void*)self);
    if (window.contentView)
        cocoa().views.at(window.contentView).window = nullptr;
    window.contentView = (void*)view;
    if (!view)
        return;
    cocoa().views.at((void*)view).window = (void*)self;
    [view setFrame:NSMakeRect(0, 0, window.frame.width, window.frame.height)];
}
- (BOOL)makeFirstResponder:(NSResponder*)responder {
    if ([(NSView*)responder window] != self)
        return NO;
    cocoa().windows.at((void*)self).firstResponder = (void*)responder;
    return YES;
}
- (BOOL)canBecomeKeyWindow {
    return (cocoa().windows.at((void*)self).styleMask & 1) != 0;
}
- (void)setReleasedWhenClosed:(BOOL)flag {
    cocoa().windows.at((void*)self).isReleasedWhenClosed = flag;
}
- (void)setOpaque:(BOOL)flag {
    cocoa().windows.at((void*)self).isOpaque = flag;
}
- (void)setBackgroundColor:(NSColor*)color {
    cocoa().windows.at((void*)self).hasClearBackground = color == [NSColor clearColor];
}
- (void)setLevel:(NSWindowLevel)level {
    cocoa().windows.at((void*)self).level = level;
}
- (void)setIgnoresMouseEvents:(BOOL)flag {
    cocoa().windows.at((void*)self).ignoresMouse = flag;
}
- (void)setCollectionBehavior:(NSWindowCollectionBehavior)behavior {
    cocoa().windows.at((void*)self).behavior = behavior;
}
- (void)setHasShadow:(BOOL)flag {
    cocoa().windows.at((void*)self).hasShadow = flag;
}
- (void)setHidesOnDeactivate:(BOOL)flag {
    cocoa().windows.at((void*)self).hidesOnDeactivate = flag;
}
- (void)setFrame:(NSRect)frame display:(BOOL)display {
    auto& window = cocoa().windows.at((void*)self);
    const double wider = frame.size.width - window.frame.width;
    const double higher = frame.size.height - window.frame.height;
    window.frame = fromNative(frame);
    window.wasDisplayed = display;
    if (!window.contentView)
        return;
    cocoa().views.at(window.contentView).frame = {0, 0, frame.size.width, frame.size.height};
    for (auto& [object, view] : cocoa().views) {
        if (view.superview != window.contentView)
            continue;
        view.frame.width += view.autoresizing & NSViewWidthSizable ? wider : 0;
        view.frame.height += view.autoresizing & NSViewHeightSizable ? higher : 0;
    }
}
- (void)orderFrontRegardless {
    auto& window = cocoa().windows.at((void*)self);
    window.isOrderedIn = cocoa().isActive || !window.hidesOnDeactivate;
}
- (void)makeKeyAndOrderFront:(id)sender {
    (void)sender;
    [self orderFrontRegardless];
    auto& window = cocoa().windows.at((void*)self);
    const bool keepsOthersActive =
        window.isPanel && window.styleMask & NSWindowStyleMaskNonactivatingPanel;
    window.isKey = [self canBecomeKeyWindow] && (cocoa().isActive || keepsOthersActive);
}
- (void)orderOut:(id)sender {
    (void)sender;
    cocoa().windows.at((void*)self).isOrderedIn = false;
    cocoa().windows.at((void*)self).isKey = false;
}
- (NSRect)convertRectToScreen:(NSRect)rect {
    const AppKitRect& frame = cocoa().windows.at((void*)self).frame;
    return NSMakeRect(frame.x + rect.origin.x, frame.y + rect.origin.y, rect.size.width,
                      rect.size.height);
}
@end

@implementation NSPanel
@end
