#pragma once

#include "X11Connection.h"

#include <QRect>
#include <cstdint>
#include <optional>
#include <vector>

namespace tilewright {

/// How far something reaches beyond a client window on each side, in pixels.
struct X11Extents {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;

    friend bool operator==(const X11Extents&, const X11Extents&) = default;
};

/// The sizes that a client agrees to, without decorations.
struct X11SizeLimits {
    QSize minimum{1, 1};
    QSize maximum{32767, 32767};
    QSize base{0, 0};
    QSize increment{1, 1};

    /// What a client's WM_NORMAL_HINTS say, however little they make sense.
    [[nodiscard]] static X11SizeLimits fromHints(const std::vector<std::uint32_t>& hints);

    /// The size nearest to the wish that the client agrees to, increments rounded down.
    [[nodiscard]] QSize constrained(QSize wish) const;

    friend bool operator==(const X11SizeLimits&, const X11SizeLimits&) = default;
};

/// The point of a window's frame that lies where the client asks to be, as a client's
/// WM_NORMAL_HINTS say; the frame's upper left corner where they do not.
[[nodiscard]] xcb_gravity_t gravityFromHints(const std::vector<std::uint32_t>& hints);

/// What was found out about a window in one look. Coordinates are the X screen's pixels.
struct X11WindowFacts {
    /// Whether the window exists; nothing else holds where it does not.
    bool exists = false;
    /// Whether the server did not answer in time: the rest is unknown.
    bool isUnknown = false;
    /// Whether a window manager looks after it.
    bool isManaged = false;
    /// Whether it is a window that users work in; panels, wallpapers, menus and the like are none.
    bool isApplicationWindow = false;
    bool isDialog = false;
    /// Maximised in either direction.
    bool isMaximized = false;
    bool isFullscreen = false;
    bool isShaded = false;
    /// Whether the client asks not to be listed among the user's windows.
    bool skipsTaskbar = false;
    /// The client's process; 0 where it does not tell.
    qint64 processID = 0;
    /// The client window's own area, without its border.
    QRect client;
    /// Decorations that the window manager added.
    X11Extents decorations;
    /// The invisible part that the client drew around itself.
    X11Extents shadow;
    /// Whether the client tells of such a part, be it that there is none now.
    bool tellsShadow = false;
    X11SizeLimits limits;
    xcb_gravity_t gravity = XCB_GRAVITY_NORTH_WEST;

    /// What the user sees of the window: with decorations, without shadows.
    [[nodiscard]] QRect outerFrame() const;
    /// The client's size when the outer frame has a size.
    [[nodiscard]] QSize clientSize(QSize outer) const;
    /// The outer frame's size when the client has a size.
    [[nodiscard]] QSize outerSize(QSize client) const;
    /// How far the point that a client asks for lies from its frame's upper left corner, while it
    /// asks for a size as well: what the decorations add on both sides goes to the left and above
    /// of it as its gravity says.
    [[nodiscard]] QPoint gravityOffset() const;
};

/// A look at a window whose answers are on their way: begun together with other requests, it costs
/// no round trip of its own. Answers that nobody takes are thrown away.
class X11WindowLook {
public:
    /// Asks. The connection has to outlive the look.
    X11WindowLook(X11Connection& connection, xcb_window_t window);
    X11WindowLook(X11WindowLook&& other) noexcept;
    X11WindowLook& operator=(X11WindowLook&&) = delete;
    ~X11WindowLook();

    [[nodiscard]] xcb_window_t window() const { return window_; }
    /// Waits for the answers: at most one round trip. Where the window manager tells of no
    /// decorations the window's frame is looked for: one more for a window that has none, three or
    /// more for one that has. Once only.
    [[nodiscard]] X11WindowFacts take();

private:
    struct Cookies {
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t geometry;
        xcb_translate_coordinates_cookie_t origin;
        xcb_get_property_cookie_t managed;
        xcb_get_property_cookie_t state;
        xcb_get_property_cookie_t desktop;
        xcb_get_property_cookie_t type;
        xcb_get_property_cookie_t process;
        xcb_get_property_cookie_t decorations;
        xcb_get_property_cookie_t shadow;
        xcb_get_property_cookie_t hints;
        /// The server answers in order: once this has come, nothing is late.
        xcb_get_input_focus_cookie_t last;
    };

    X11Connection& connection_;
    xcb_window_t window_;
    /// None once taken or moved from.
    std::optional<Cookies> cookies_;
};

/// Looks at a window and waits, as `X11WindowLook::take` does.
[[nodiscard]] inline X11WindowFacts readWindowFacts(X11Connection& connection,
                                                    xcb_window_t window) {
    return X11WindowLook(connection, window).take();
}

/// Whether users work in windows that bear these types: panels, wallpapers, menus and the like are
/// none. The first type that this program knows counts; without one it is a window for users.
[[nodiscard]] bool isApplicationType(const X11Connection& connection,
                                     const std::vector<std::uint32_t>& types);

} // namespace tilewright
