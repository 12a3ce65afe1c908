#include "DisplayUUID.h"

#include "CFText.h"

#include <ApplicationServices/ApplicationServices.h>

namespace tilewright {

std::optional<QString> persistentUUIDOfDisplay(quint32 displayID) {
    const auto uuid = CFOwner<CFUUIDRef>::adopt(CGDisplayCreateUUIDFromDisplayID(displayID));
    if (!uuid)
        return std::nullopt;
    const auto text =
        CFOwner<CFStringRef>::adopt(CFUUIDCreateString(kCFAllocatorDefault, uuid.get()));
    return textOf(text.get());
}

} // namespace tilewright
