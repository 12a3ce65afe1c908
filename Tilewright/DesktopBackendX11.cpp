#include "DesktopBackend.h"

#include <X11/X11Platform.h>

#include <cstdio>

namespace tilewright {

std::vector<std::string> DesktopBackend::qtArguments() {
    // The windows of an X server are what is moved, also where a Wayland compositor runs beside it.
    return {"-platform", "xcb"};
}

std::unique_ptr<Platform> DesktopBackend::open() {
    auto platform = X11Platform::open();
    if (!platform)
        std::fputs("tilewright: there is no X server to speak to\n", stderr);
    return platform;
}

} // namespace tilewright
