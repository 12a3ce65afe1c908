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

void X11ScreenSaver::suspend() {
    if (!canSuspend_ || !connection_.isAlive())
        return;
    forgetOutcome();
    newest_ = xcb_screensaver_suspend_checked(connection_.xcb(), 1);
    connection_.flush();
}

bool X11ScreenSaver::isSuspended(std::chrono::milliseconds bound) {
    if (!newest_ || !connection_.isAlive())
        return false;
    return connection_.check(*std::exchange(newest_, std::nullopt), bound) == X11Outcome::done;
}

void X11ScreenSaver::resume() {
    if (!canSuspend_ || !connection_.isAlive())
        return;
    forgetOutcome();
    xcb_screensaver_suspend(connection_.xcb(), 0);
    connection_.flush();
}

void X11ScreenSaver::forgetOutcome() {
    if (newest_)
        xcb_discard_reply(connection_.xcb(), newest_->sequence);
    newest_.reset();
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
