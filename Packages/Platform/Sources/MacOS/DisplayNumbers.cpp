#include "DisplayNumbers.h"

#include "CFText.h"

#include <ApplicationServices/ApplicationServices.h>

namespace tilewright {

std::optional<quint32> displayNumberIn(CFDictionaryRef deviceDescription) {
    const auto key = makeCFString(QStringLiteral("NSScreenNumber"));
    if (!deviceDescription || !key)
        return std::nullopt;
    // Borrowed from the description.
    const CFTypeRef entry = CFDictionaryGetValue(deviceDescription, key.get());
    if (!entry || CFGetTypeID(entry) != CFNumberGetTypeID())
        return std::nullopt;
    // Wide enough for every unsigned number of 32 bits.
    std::int64_t number = 0;
    if (!CFNumberGetValue(static_cast<CFNumberRef>(entry), kCFNumberSInt64Type, &number))
        return std::nullopt;
    return static_cast<quint32>(number);
}

std::optional<QString> persistentUUIDOfDisplay(quint32 displayID) {
    const auto uuid = CFOwner<CFUUIDRef>::adopt(CGDisplayCreateUUIDFromDisplayID(displayID));
    if (!uuid)
        return std::nullopt;
    const auto text =
        CFOwner<CFStringRef>::adopt(CFUUIDCreateString(kCFAllocatorDefault, uuid.get()));
    return textOf(text.get());
}

} // namespace tilewright
