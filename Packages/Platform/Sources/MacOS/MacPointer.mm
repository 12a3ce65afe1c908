#include "MacPointer.h"

#include <AppKit/AppKit.h>

namespace tilewright {

AppKitPoint MacPointer::location() const {
    const NSPoint location = [NSEvent mouseLocation];
    return {location.x, location.y};
}

} // namespace tilewright
