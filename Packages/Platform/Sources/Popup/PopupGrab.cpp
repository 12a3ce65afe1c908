#include "PopupGrab.h"

#include <algorithm>

namespace tilewright {

namespace {

/// No grab is granted while another client holds the pointer or the keyboard, as the tray's host
/// does for the click that opened the panel and a window manager until it has ended a move; and
/// nobody tells when it lets go. Mostly that is soon.
constexpr std::chrono::milliseconds shortestWait{30};
constexpr std::chrono::milliseconds longestWait{480};

} // namespace

void PopupGrab::take(QWindow& window) {
    release();
    window_ = &window;
    wait_ = shortestWait;
    ask();
}

void PopupGrab::release() {
    timer_.reset();
    if (window_) {
        window_->setKeyboardGrabEnabled(false);
        window_->setMouseGrabEnabled(false);
    }
    window_.clear();
    isHeld_ = false;
}

void PopupGrab::ask() {
    if (!window_)
        return;
    const bool keyboard = window_->setKeyboardGrabEnabled(true);
    const bool mouse = window_->setMouseGrabEnabled(true);
    isHeld_ = keyboard && mouse;
    if (isHeld_)
        return;
    timer_ = ScopedTimer(loop_.scheduleOnce(wait_, [this] { ask(); }));
    wait_ = std::min(wait_ * 3 / 2, longestWait);
}

} // namespace tilewright
