// The same for AppKit: the values and sizes that the backend relies on.

#include <AppKit/AppKit.h>

#include <type_traits>

static_assert(NSEventTypeLeftMouseDown == 1);
static_assert(NSEventTypeLeftMouseUp == 2);
static_assert(NSEventTypeRightMouseDown == 3);
static_assert(NSEventTypeLeftMouseDragged == 6);
static_assert(NSEventTypeFlagsChanged == 12);
static_assert(NSEventTypeOtherMouseDown == 25);
static_assert((NSEventMaskLeftMouseUp | NSEventMaskLeftMouseDragged | NSEventMaskFlagsChanged) ==
              0x1044);
static_assert(NSEventModifierFlagShift == 0x20000);
static_assert(NSEventModifierFlagControl == 0x40000);
static_assert(NSEventModifierFlagOption == 0x80000);
static_assert(NSEventModifierFlagCommand == 0x100000);

static_assert(NSWindowStyleMaskBorderless == 0);
static_assert(NSWindowStyleMaskNonactivatingPanel == 0x80);
static_assert(NSBackingStoreBuffered == 2);
static_assert((NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorStationary |
               NSWindowCollectionBehaviorIgnoresCycle |
               NSWindowCollectionBehaviorFullScreenAuxiliary) == 0x151);
static_assert((NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorIgnoresCycle |
               NSWindowCollectionBehaviorFullScreenAuxiliary) == 0x141);
static_assert(NSApplicationActivateIgnoringOtherApps == 2);
static_assert(NSViewWidthSizable == 2 && NSViewHeightSizable == 16);
static_assert(std::is_same_v<NSWindowLevel, NSInteger>);

static_assert(NSScreenSaverWindowLevel == 1000);
static_assert(NSStatusWindowLevel == 25);
// No static assertion takes a constant of floating point, which the compiler knows all the same.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wvla-extension"
#pragma clang diagnostic ignored "-Wgnu-folding-constant"
extern char squareStatusItemLength[NSSquareStatusItemLength == -2.0 ? 1 : -1];
#pragma clang diagnostic pop
static_assert(NSNotificationSuspensionBehaviorDeliverImmediately == 4);
static_assert(kCoreEventClass == 'aevt' && kAEReopenApplication == 'rapp');
static_assert(NSActivityUserInitiatedAllowingIdleSystemSleep == 0x00EFFFFF);

static_assert(NSApplicationSupportDirectory == 14);
static_assert(NSUserDomainMask == 1);

static_assert(std::is_same_v<NSPoint, CGPoint> && std::is_same_v<NSRect, CGRect>);
static_assert(std::is_same_v<NSInteger, long> && std::is_same_v<NSUInteger, unsigned long>);
static_assert(sizeof(unichar) == 2);
static_assert(sizeof(NSRange) == 16);
