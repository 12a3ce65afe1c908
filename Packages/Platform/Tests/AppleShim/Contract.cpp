// What the documentation of the platform says of the plain C interfaces that the backend calls:
// signatures, values, sizes, names. Where the stand-ins are used, this keeps them true to it; on
// macOS it holds the system's own headers, and so the backend's assumptions, to the same.

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/pwr_mgt/IOPMLib.h>
#include <Platform/Accessibility.h>
#include <Platform/PowerAssertions.h>

#include <cstdint>
#include <string_view>
#include <type_traits>

namespace {

template<class Function, class Signature>
constexpr bool hasSignature = std::is_same_v<Function, Signature*>;

#define SIGNATURE(function, ...)                                                                   \
    static_assert(hasSignature<decltype(&(function)), __VA_ARGS__>, #function)

// Core Foundation
SIGNATURE(CFRetain, CFTypeRef(CFTypeRef));
SIGNATURE(CFRelease, void(CFTypeRef));
SIGNATURE(CFGetTypeID, CFTypeID(CFTypeRef));
SIGNATURE(CFEqual, Boolean(CFTypeRef, CFTypeRef));
SIGNATURE(CFStringGetTypeID, CFTypeID());
SIGNATURE(CFBooleanGetTypeID, CFTypeID());
SIGNATURE(CFNumberGetTypeID, CFTypeID());
SIGNATURE(CFStringCreateWithCharacters, CFStringRef(CFAllocatorRef, const UniChar*, CFIndex));
SIGNATURE(CFStringGetLength, CFIndex(CFStringRef));
SIGNATURE(CFStringGetCharacters, void(CFStringRef, CFRange, UniChar*));
SIGNATURE(CFDictionaryCreate,
          CFDictionaryRef(CFAllocatorRef, const void**, const void**, CFIndex,
                          const CFDictionaryKeyCallBacks*, const CFDictionaryValueCallBacks*));
SIGNATURE(CFDictionaryGetValue, const void*(CFDictionaryRef, const void*));
SIGNATURE(CFNumberGetValue, Boolean(CFNumberRef, CFNumberType, void*));
SIGNATURE(CFBooleanGetValue, Boolean(CFBooleanRef));
SIGNATURE(CFUUIDCreateString, CFStringRef(CFAllocatorRef, CFUUIDRef));
static_assert(std::is_same_v<CFTypeRef, const void*>);
static_assert(std::is_same_v<CFIndex, long>);
static_assert(std::is_same_v<CFTypeID, unsigned long>);
static_assert(std::is_same_v<Boolean, unsigned char>);
static_assert(std::is_same_v<UniChar, std::uint16_t>);
static_assert(kCFNumberSInt64Type == 4);
static_assert(sizeof(CFNumberType) == 8);
static_assert(sizeof(CFRange) == 16);
static_assert(sizeof(CFDictionaryKeyCallBacks) == 48);
static_assert(sizeof(CFDictionaryValueCallBacks) == 40);

// Core Graphics
static_assert(std::is_same_v<CGFloat, double>);
static_assert(sizeof(CGPoint) == 16 && sizeof(CGSize) == 16 && sizeof(CGRect) == 32);
static_assert(std::is_same_v<CGDirectDisplayID, std::uint32_t>);
SIGNATURE(CGDisplayCreateUUIDFromDisplayID, CFUUIDRef(std::uint32_t));

// Accessibility
SIGNATURE(AXIsProcessTrusted, Boolean());
SIGNATURE(AXIsProcessTrustedWithOptions, Boolean(CFDictionaryRef));
SIGNATURE(AXUIElementCreateSystemWide, AXUIElementRef());
SIGNATURE(AXUIElementCreateApplication, AXUIElementRef(pid_t));
SIGNATURE(AXUIElementCopyAttributeValue, AXError(AXUIElementRef, CFStringRef, CFTypeRef*));
SIGNATURE(AXUIElementCopyElementAtPosition, AXError(AXUIElementRef, float, float, AXUIElementRef*));
SIGNATURE(AXUIElementSetAttributeValue, AXError(AXUIElementRef, CFStringRef, CFTypeRef));
SIGNATURE(AXUIElementSetMessagingTimeout, AXError(AXUIElementRef, float));
SIGNATURE(AXUIElementGetPid, AXError(AXUIElementRef, pid_t*));
SIGNATURE(AXUIElementGetTypeID, CFTypeID());
SIGNATURE(AXValueCreate, AXValueRef(AXValueType, const void*));
static_assert(std::is_same_v<pid_t, int>);
static_assert(sizeof(AXError) == 4 && std::is_signed_v<std::underlying_type_t<AXError>>);
static_assert(sizeof(AXValueType) == 4);
static_assert(kAXValueTypeCGPoint == 1);
static_assert(kAXValueTypeCGSize == 2);

constexpr bool isSame(::AXError theirs, int number, tilewright::AXError ours) {
    return static_cast<int>(theirs) == number && static_cast<int>(ours) == number;
}
using Error = tilewright::AXError;
static_assert(isSame(kAXErrorSuccess, 0, Error::success));
static_assert(isSame(kAXErrorFailure, -25200, Error::failure));
static_assert(isSame(kAXErrorIllegalArgument, -25201, Error::illegalArgument));
static_assert(isSame(kAXErrorInvalidUIElement, -25202, Error::invalidUIElement));
static_assert(isSame(kAXErrorInvalidUIElementObserver, -25203, Error::invalidUIElementObserver));
static_assert(isSame(kAXErrorCannotComplete, -25204, Error::cannotComplete));
static_assert(isSame(kAXErrorAttributeUnsupported, -25205, Error::attributeUnsupported));
static_assert(isSame(kAXErrorActionUnsupported, -25206, Error::actionUnsupported));
static_assert(isSame(kAXErrorNotificationUnsupported, -25207, Error::notificationUnsupported));
static_assert(isSame(kAXErrorNotImplemented, -25208, Error::notImplemented));
static_assert(isSame(kAXErrorNotificationAlreadyRegistered, -25209,
                     Error::notificationAlreadyRegistered));
static_assert(isSame(kAXErrorNotificationNotRegistered, -25210, Error::notificationNotRegistered));
static_assert(isSame(kAXErrorAPIDisabled, -25211, Error::apiDisabled));
static_assert(isSame(kAXErrorNoValue, -25212, Error::noValue));
static_assert(isSame(kAXErrorParameterizedAttributeUnsupported, -25213,
                     Error::parameterizedAttributeUnsupported));
static_assert(isSame(kAXErrorNotEnoughPrecision, -25214, Error::notEnoughPrecision));

constexpr bool isNamed(const char* known, std::string_view name) {
    return name == known;
}
static_assert(isNamed(nameOf(tilewright::AXAttribute::focusedUIElement), "AXFocusedUIElement"));
static_assert(isNamed(nameOf(tilewright::AXAttribute::focusedWindow), "AXFocusedWindow"));
static_assert(isNamed(nameOf(tilewright::AXAttribute::window), "AXWindow"));
static_assert(isNamed(nameOf(tilewright::AXAttribute::parent), "AXParent"));
static_assert(isNamed(nameOf(tilewright::AXAttribute::role), "AXRole"));
static_assert(isNamed(nameOf(tilewright::AXAttribute::subrole), "AXSubrole"));
static_assert(isNamed(nameOf(tilewright::AXAttribute::position), "AXPosition"));
static_assert(isNamed(nameOf(tilewright::AXAttribute::size), "AXSize"));
static_assert(isNamed(tilewright::axWindowRole, "AXWindow"));

// Power management
SIGNATURE(IOPMAssertionCreateWithName,
          IOReturn(CFStringRef, IOPMAssertionLevel, CFStringRef, IOPMAssertionID*));
SIGNATURE(IOPMAssertionRelease, IOReturn(IOPMAssertionID));
static_assert(std::is_same_v<IOReturn, int>);
static_assert(std::is_same_v<IOPMAssertionID, tilewright::PowerAssertionID>);
static_assert(std::is_same_v<IOPMAssertionLevel, std::uint32_t>);
static_assert(kIOReturnSuccess == 0);
static_assert(kIOPMNullAssertionID == 0);
static_assert(kIOPMAssertionLevelOn == 255);

} // namespace
