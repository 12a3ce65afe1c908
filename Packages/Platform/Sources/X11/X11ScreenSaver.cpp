#include "X11ScreenSaver.h"

#include <xcb/screensaver.h>

namespace tilewright {

namespace {
constexpr std::uint8_t majorVersion = 1;
constexpr std::uint8_t minorVersion = 1;
} // namespace

X11ScreenSaver::X11ScreenSaver(X11Connection& connection)
    : connection_(connection)
    , canSuspend_(serverCanSuspend()) {}

X11ScreenSaver::Suspension X11ScreenSaver::suspend() {
    if (!canSuspend_ || !connection_.isAlive())
        return Suspension::none;
    switch (connection_.check(xcb_screensaver_suspend_checked(connection_.xcb(), 1))) {
    case X11Outcome::done:
        return Suspension::held;
    case X11Outcome::unknown:
        return Suspension::unanswered;
    case X11Outcome::failed:
        break;
    }
    return Suspension::none;
}

void X11ScreenSaver::resume() {
    if (!connection_.isAlive())
        return;
    xcb_screensaver_suspend(connection_.xcb(), 0);
    connection_.flush();
}

bool X11ScreenSaver::serverCanSuspend() {
    const auto* extension = xcb_get_extension_data(connection_.xcb(), &xcb_screensaver_id);
    if (!extension || !extension->present)
        return false;
    const auto version = connection_.reply<xcb_screensaver_query_version_reply_t>(
        xcb_screensaver_query_version(connection_.xcb(), majorVersion, minorVersion));
    return version && (version->server_major_version > majorVersion ||
                       (version->server_major_version == majorVersion &&
                        version->server_minor_version >= minorVersion));
}

} // namespace tilewright
