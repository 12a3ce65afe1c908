#pragma once

#include "X11SelectionOwner.h"

#include <FreeDesktop/SystemTray.h>

#include <QAbstractNativeEventFilter>

namespace tilewright {

/// The X screen's system tray: whoever owns its selection.
///
/// Keeps from Qt that a tray has announced itself: Qt would destroy its icon's window and make
/// another one, though the tray may just be taking the first one in. tint2 ends by that at times.
///
/// Main thread only. The connection has to outlive it.
class X11SystemTray final : public SystemTray, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit X11SystemTray(X11Connection& connection);

    [[nodiscard]] bool isThere() const override { return owner_.window() != XCB_NONE; }

private:
    /// True for an announcement: nobody else is to hear it.
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    const xcb_atom_t announcement_;
    const xcb_atom_t selection_;
    X11SelectionOwner owner_;
};

} // namespace tilewright
