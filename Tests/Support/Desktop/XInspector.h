#pragma once

#include "XClient.h"

#include <QImage>
#include <QRect>
#include <QString>
#include <functional>
#include <optional>
#include <sys/types.h>
#include <vector>

namespace tilewright::testing {

/// A client of an X server that only looks: what a window's frame, properties and pixels are, as
/// anybody else on the display sees them. Its own connection, its own code: nothing of the program
/// under test. Coordinates are the X screen's pixels, origin at the top-left.
class XInspector {
public:
    using Window = quint32;

    explicit XInspector(const QString& display);
    XInspector(const XInspector&) = delete;
    XInspector& operator=(const XInspector&) = delete;

    [[nodiscard]] bool isConnected() const { return client_.isConnected(); }
    [[nodiscard]] Window root() const { return client_.root(); }
    [[nodiscard]] QSize screenSize() const;
    [[nodiscard]] xcb_connection_t* connection() const { return client_.xcb(); }

    /// Every client window under management (it bears WM_STATE) for which the predicate holds.
    [[nodiscard]] std::vector<Window>
    clients(const std::function<bool(Window)>& predicate = {}) const;
    /// The managed window with this title.
    [[nodiscard]] std::optional<Window> clientTitled(const QString& title) const;
    /// Every window of the tree, the root excluded.
    [[nodiscard]] std::vector<Window> allWindows() const;
    /// Those of them that say they are this process's.
    [[nodiscard]] std::vector<Window> windowsOf(pid_t process) const;

    [[nodiscard]] QString title(Window window) const;
    [[nodiscard]] quint32 processID(Window window) const;
    [[nodiscard]] bool exists(Window window) const;
    [[nodiscard]] bool isMapped(Window window) const;
    [[nodiscard]] bool isOverrideRedirect(Window window) const;
    /// How many bits the window's pixels have; 0 for one that is gone.
    [[nodiscard]] int depth(Window window) const;

    /// The client's own area on the screen.
    [[nodiscard]] QRect clientFrame(Window window) const;
    /// What the user sees of the window: server-side decorations included, invisible shadows of
    /// client-side ones left out.
    [[nodiscard]] QRect outerFrame(Window window) const;

    /// The ancestor just below the root, such as the window manager's frame, or the window itself.
    [[nodiscard]] Window toplevelOf(Window window) const;
    /// The child of the root to which a press at this place goes, as far as shapes and grabs are
    /// the server's matter; 0 for the root itself.
    [[nodiscard]] Window toplevelAt(QPoint place) const;

    /// The 32-bit items of a property; empty when it is not there.
    [[nodiscard]] std::vector<quint32> property(Window window, const char* name) const;
    [[nodiscard]] QByteArray bytesProperty(Window window, const char* name) const;
    /// Whether a property that holds atoms holds this one, such as _NET_WM_STATE.
    [[nodiscard]] bool hasAtom(Window window, const char* property, const char* atom) const;
    [[nodiscard]] quint32 atom(const char* name) const { return client_.atom(name); }

    /// The window that the window manager calls active; 0 when none is.
    [[nodiscard]] Window activeWindow() const;
    /// The window with the X input focus.
    [[nodiscard]] Window inputFocus() const;
    /// Whether the server counts any of the modifier keys as held. Not yet, or still, while
    /// somebody keeps the keyboard frozen.
    [[nodiscard]] bool isModifierHeld() const;
    /// Whether a window manager runs that follows the extended hints.
    [[nodiscard]] bool hasWindowManager() const;
    /// Whether a compositing manager runs.
    [[nodiscard]] bool hasCompositor() const;

    /// Pointer, buttons and keys, focus, active window, and every window with its frame and states:
    /// for the message of a failed test.
    [[nodiscard]] std::string describe() const;

    /// What is on the screen now; of the whole screen when the rectangle is empty.
    [[nodiscard]] QImage screenshot(QRect area = {}) const;
    [[nodiscard]] QColor pixel(QPoint point) const;

private:
    [[nodiscard]] std::string describe(Window window) const;
    [[nodiscard]] QByteArray atomName(quint32 atom) const;

    XClient client_;
};

} // namespace tilewright::testing
