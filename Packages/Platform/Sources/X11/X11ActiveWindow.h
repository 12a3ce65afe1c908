#pragma once

#include "X11EventSelection.h"

#include <deque>
#include <functional>
#include <optional>

namespace tilewright {

/// Remembers which windows the user worked in last. This program's own panel and overlay do not
/// count, its settings window does. Main thread only.
class X11ActiveWindow {
public:
    X11ActiveWindow(X11Connection& connection, X11EventSelection& selection);

    /// The last active window that still exists; none when there is none. One round trip, or as
    /// many as windows have gone meanwhile.
    [[nodiscard]] std::optional<xcb_window_t> lastActive();
    /// The same among the windows of one process.
    [[nodiscard]] std::optional<xcb_window_t> lastActiveOf(qint64 process);
    /// Registers the one listener to be told when another window has become the active one.
    void onChange(std::function<void()> callback) { onChange_ = std::move(callback); }

private:
    struct Visit {
        xcb_window_t window;
        qint64 process;
    };

    [[nodiscard]] xcb_get_property_cookie_t requestActive() const;
    xcb_window_t noteActive(xcb_get_property_cookie_t cookie);
    void activeChanged();
    void note(xcb_window_t window);
    [[nodiscard]] bool takeExists(xcb_get_property_cookie_t state) const;

    X11Connection& connection_;
    /// Ends the connection to its signals.
    QObject context_;
    X11EventSelection::Interest rootInterest_;
    X11Listener rootListener_;
    std::function<void()> onChange_;
    /// The active window that the listener was told of last.
    xcb_window_t announced_ = XCB_NONE;
    /// Most recent first.
    std::deque<Visit> visits_;
};

} // namespace tilewright
