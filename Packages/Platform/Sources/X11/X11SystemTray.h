#pragma once

#include "X11SelectionOwner.h"

#include <FreeDesktop/SystemTray.h>

#include <QAbstractNativeEventFilter>
#include <vector>

namespace tilewright {

/// The X screen's system tray: whoever owns its selection.
///
/// Keeps from Qt that a tray has announced itself: Qt would destroy its icon's window and make
/// another one, though the tray may just be taking the first one in. tint2 ends by that at times.
///
/// Has Qt know that a tray is one no longer, and is heard only after that: Qt waits for the end of
/// the tray's window alone. It misses that of a window that ends while it begins to wait, and a
/// tray may give up its place and keep its window; its icon would be offered to no other one.
///
/// Main thread only. The connection has to outlive it.
class X11SystemTray final : public SystemTray, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit X11SystemTray(X11Connection& connection);
    ~X11SystemTray() override;

    [[nodiscard]] bool isThere() const override { return owner_.window() != XCB_NONE; }

private:
    void follow();
    /// Tells Qt, as the server would, that a window has ended.
    void tellQtOfTheEnd(xcb_window_t window);
    /// True for what Qt is not to hear.
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    [[nodiscard]] bool isAnnouncement(const xcb_client_message_event_t& notice) const;
    [[nodiscard]] bool isNoNews(const xcb_destroy_notify_event_t& notice);

    const xcb_atom_t announcement_;
    const xcb_atom_t selection_;
    const xcb_window_t root_;
    X11SelectionOwner owner_;
    xcb_window_t current_ = XCB_NONE;
    /// A window of Qt's connection, to which it sends its own news; none where Qt has none.
    xcb_window_t mailbox_ = XCB_NONE;
    /// Former trays of which Qt is being told.
    std::vector<xcb_window_t> leaving_;
    /// Those whose end Qt has heard of from the server.
    std::vector<xcb_window_t> ended_;
};

} // namespace tilewright
