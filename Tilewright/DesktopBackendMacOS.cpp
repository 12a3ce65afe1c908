#include "DesktopBackend.h"

#include <MacOS/MacPlatform.h>

namespace tilewright {

std::vector<std::string> DesktopBackend::qtArguments() {
    return {};
}

std::shared_ptr<void> DesktopBackend::precaution() {
    return nullptr;
}

std::unique_ptr<Platform> DesktopBackend::open() {
    return std::make_unique<MacPlatform>();
}

} // namespace tilewright
