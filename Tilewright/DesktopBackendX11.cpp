#include "DesktopBackend.h"

#include <FreeDesktop/BusPrecaution.h>
#include <X11/X11Platform.h>

#include <cstdio>

namespace tilewright {

std::vector<std::string> DesktopBackend::qtArguments() {
    // The windows of an X server are what is moved, also where a Wayland compositor runs beside it.
    return {"-platform", "xcb"};
}

std::shared_ptr<void> DesktopBackend::precaution() {
    return std::make_shared<BusPrecaution>();
}

std::unique_ptr<Platform> DesktopBackend::open() {
    auto platform = X11Platform::open();
    if (!platform)
        std::fputs("tilewright: there is no X server to speak to\n", stderr);
    return platform;
}

} // namespace tilewright
