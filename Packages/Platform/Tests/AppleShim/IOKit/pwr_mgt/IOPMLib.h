#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

typedef int kern_return_t;
typedef kern_return_t IOReturn;
typedef std::uint32_t IOPMAssertionID;
typedef std::uint32_t IOPMAssertionLevel;

enum { kIOPMNullAssertionID = 0 };
enum { kIOPMAssertionLevelOff = 0, kIOPMAssertionLevelOn = 255 };
inline constexpr IOReturn kIOReturnSuccess = 0;

IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel level, CFStringRef name,
                                     IOPMAssertionID* id);
IOReturn IOPMAssertionRelease(IOPMAssertionID id);

} // extern "C"
