#pragma once

#include <Foundation/Foundation.h>
#include <sys/types.h>

@class NSColor;
@class NSEvent;
@class NSImage;
@class NSMenu;
@class NSScreen;
@class NSView;
@class NSWindow;

typedef NSString* NSDeviceDescriptionKey;
extern NSNotificationName const NSApplicationWillFinishLaunchingNotification;
extern NSNotificationName const NSApplicationDidChangeScreenParametersNotification;
extern NSNotificationName const NSWorkspaceDidActivateApplicationNotification;
extern NSNotificationName const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;
extern NSNotificationName const NSWorkspaceSessionDidBecomeActiveNotification;

@interface NSScreen : NSObject
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(class, readonly, strong) NSScreen* mainScreen;
@property(readonly) NSRect frame;
@property(readonly) NSRect visibleFrame;
@property(readonly, copy) NSDictionary<NSDeviceDescriptionKey, id>* deviceDescription;
@property(readonly, copy) NSString* localizedName;
@end

typedef NS_ENUM(NSUInteger, NSEventType) {
    NSEventTypeLeftMouseDown = 1,
    NSEventTypeLeftMouseUp = 2,
    NSEventTypeRightMouseDown = 3,
    NSEventTypeLeftMouseDragged = 6,
    NSEventTypeFlagsChanged = 12,
    NSEventTypeOtherMouseDown = 25,
};

typedef NS_OPTIONS(unsigned long long, NSEventMask) {
    NSEventMaskLeftMouseUp = 1ULL << NSEventTypeLeftMouseUp,
    NSEventMaskLeftMouseDragged = 1ULL << NSEventTypeLeftMouseDragged,
    NSEventMaskFlagsChanged = 1ULL << NSEventTypeFlagsChanged,
};

typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
    NSEventModifierFlagShift = 1 << 17,
    NSEventModifierFlagControl = 1 << 18,
    NSEventModifierFlagOption = 1 << 19,
    NSEventModifierFlagCommand = 1 << 20,
};

@interface NSEvent : NSObject
@property(readonly) NSEventType type;
@property(readonly) NSEventModifierFlags modifierFlags;
@property(class, readonly) NSPoint mouseLocation;
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask
                                    handler:(void (^)(NSEvent* event))block;
+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                   handler:(NSEvent* (^)(NSEvent* event))block;
+ (void)removeMonitor:(id)monitor;
@end

typedef NS_OPTIONS(NSUInteger, NSApplicationActivationOptions) {
    NSApplicationActivateIgnoringOtherApps = 1 << 1,
};

@interface NSRunningApplication : NSObject
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
@property(readonly) pid_t processIdentifier;
@property(readonly, copy) NSString* localizedName;
@property(readonly, copy) NSDate* launchDate;
@property(readonly, getter=isTerminated) BOOL terminated;
@property(class, readonly, strong) NSRunningApplication* currentApplication;
+ (instancetype)runningApplicationWithProcessIdentifier:(pid_t)process;
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)identifier;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSRunningApplication* frontmostApplication;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
- (BOOL)openURL:(NSURL*)url;
@end

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
    NSApplicationActivationPolicyRegular = 0,
    NSApplicationActivationPolicyAccessory = 1,
};

@interface NSApplication : NSObject
@property(class, readonly, strong) NSApplication* sharedApplication;
@property(strong) NSMenu* mainMenu;
- (void)activateIgnoringOtherApps:(BOOL)ignoringOtherApps;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
@end

typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
    NSWindowStyleMaskBorderless = 0,
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
};
typedef NS_ENUM(NSUInteger, NSBackingStoreType) {
    NSBackingStoreBuffered = 2,
};
typedef NSInteger NSWindowLevel;
static const NSWindowLevel NSStatusWindowLevel = 25;
static const NSWindowLevel NSScreenSaverWindowLevel = 1000;
typedef NS_OPTIONS(NSUInteger, NSWindowCollectionBehavior) {
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorStationary = 1 << 4,
    NSWindowCollectionBehaviorIgnoresCycle = 1 << 6,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};

@interface NSColor : NSObject
@property(class, readonly, strong) NSColor* clearColor;
@end

typedef NS_OPTIONS(NSUInteger, NSAutoresizingMaskOptions) {
    NSViewWidthSizable = 2,
    NSViewHeightSizable = 16,
};

@interface NSResponder : NSObject
@end

@interface NSView : NSResponder
@property NSRect frame;
@property(readonly) NSRect bounds;
@property NSAutoresizingMaskOptions autoresizingMask;
@property(readonly, assign) NSWindow* window;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
- (NSRect)convertRect:(NSRect)rect toView:(NSView*)view;
@end

@interface NSButton : NSView
@property(strong) NSImage* image;
@property(weak) id target;
@property SEL action;
- (void)highlight:(BOOL)flag;
- (void)setAccessibilityLabel:(NSString*)label;
@property(copy) NSString* toolTip;
@end

@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer;
@property(getter=isOpaque) BOOL opaque;
@property(copy) NSColor* backgroundColor;
@property NSWindowLevel level;
@property BOOL ignoresMouseEvents;
@property NSWindowCollectionBehavior collectionBehavior;
@property BOOL hasShadow;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property(strong) NSView* contentView;
@property(readonly, getter=isVisible) BOOL visible;
- (void)setFrame:(NSRect)frame display:(BOOL)display;
- (void)makeKeyAndOrderFront:(id)sender;
- (BOOL)makeFirstResponder:(NSResponder*)responder;
@property BOOL hidesOnDeactivate;
@property(readonly) BOOL canBecomeKeyWindow;
- (void)orderFrontRegardless;
- (void)orderOut:(id)sender;
- (NSRect)convertRectToScreen:(NSRect)rect;
@end

@interface NSPanel : NSWindow
@end

@interface NSImage : NSObject
- (instancetype)initWithData:(NSData*)data;
- (instancetype)initWithSize:(NSSize)size;
- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;
@property NSSize size;
@end

static const CGFloat NSSquareStatusItemLength = -2;

@interface NSStatusItem : NSObject
@property(readonly, strong) NSButton* button;
@end

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
@property(readonly) CGFloat thickness;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

@interface NSMenuItem : NSObject
- (instancetype)initWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key;
@property(strong) NSMenu* submenu;
@end

@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title;
- (void)addItem:(NSMenuItem*)item;
- (NSMenuItem*)addItemWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key;
@end
