#pragma once

#include "X11Connection.h"

#include <QRect>
#include <QRegion>
#include <cstdint>
#include <optional>

namespace tilewright {

/// The window of an overlay: override-redirect, and without any place that takes input. The server
/// fills it with a pixmap, at once as it shows, so that no compositor ever sees it empty. Made
/// hidden. All places are in pixels. Main thread only; the connection has to outlive it.
class X11OverlayWindow {
public:
    enum class Pixels {
        /// With transparency, where the server has it, for a compositor to blend.
        blended,
        /// Of the root window's kind. A window of another kind than its parent's the server would
        /// keep apart, and put together with the others itself, which takes it long.
        plain,
    };

    X11OverlayWindow(X11Connection& connection, Pixels pixels);
    ~X11OverlayWindow();
    X11OverlayWindow(const X11OverlayWindow&) = delete;
    X11OverlayWindow& operator=(const X11OverlayWindow&) = delete;

    /// How many bits a pixel has.
    [[nodiscard]] std::uint8_t depth() const { return depth_; }
    /// Sets the window's place on the X screen.
    void place(const QRect& frame);
    /// From now on the server fills the window with this; with nothing without one. What shows
    /// stays until `refresh`. To be told again after the pixmap has changed.
    void setPixmap(xcb_pixmap_t pixmap);
    /// Has the server fill a region of the window anew, if it shows.
    void refresh(const QRegion& region);
    /// Cuts the window to an outline, which may be empty; makes it whole without one.
    void setOutline(const std::optional<QRegion>& outline);
    /// Asks a compositor to blur what is behind a region; behind nothing where it is empty.
    void setBlur(const QRegion& region);

    /// Shows the window in front of all others.
    void show();
    void hide();
    [[nodiscard]] bool isShown() const { return isShown_; }

private:
    void describe();

    X11Connection& connection_;
    const xcb_window_t window_;
    std::uint8_t depth_;
    QRect frame_;
    bool isOutlined_ = false;
    bool hasBlur_ = false;
    bool isShown_ = false;
};

} // namespace tilewright
