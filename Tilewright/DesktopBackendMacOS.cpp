#include "DesktopBackend.h"

#include <MacOS/MacPlatform.h>

namespace tilewright {

void DesktopBackend::prepareToolkit() {}

std::unique_ptr<Platform> DesktopBackend::open() {
    return std::make_unique<MacPlatform>();
}

} // namespace tilewright
