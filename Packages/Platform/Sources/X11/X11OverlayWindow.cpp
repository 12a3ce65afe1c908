#include "X11OverlayWindow.h"

#include <array>
#include <unistd.h>
#include <utility>
#include <vector>
#include <xcb/shape.h>

namespace tilewright {

namespace {

struct Visual {
    std::uint8_t depth;
    xcb_visualid_t number;
};

/// The screen's visual with transparency, where that is wanted and there is one, or else its usual
/// one.
Visual visualOf(const xcb_screen_t& screen, X11OverlayWindow::Pixels pixels) {
    const Visual usual{screen.root_depth, screen.root_visual};
    if (pixels == X11OverlayWindow::Pixels::plain)
        return usual;
    constexpr std::uint8_t transparentDepth = 32;
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem != 0;
         xcb_depth_next(&depths)) {
        const auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (auto visual = visuals; visual.rem != 0; xcb_visualtype_next(&visual)) {
            if (depths.data->depth == transparentDepth &&
                visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR)
                return {transparentDepth, visual.data->visual_id};
        }
    }
    return usual;
}

std::uint32_t unsignedOf(int value) {
    return static_cast<std::uint32_t>(value);
}

std::vector<xcb_rectangle_t> rectanglesOf(const QRegion& region) {
    std::vector<xcb_rectangle_t> rectangles;
    rectangles.reserve(static_cast<std::size_t>(region.rectCount()));
    for (const QRect& rect : region)
        rectangles.push_back(
            {static_cast<std::int16_t>(rect.x()), static_cast<std::int16_t>(rect.y()),
             static_cast<std::uint16_t>(rect.width()), static_cast<std::uint16_t>(rect.height())});
    return rectangles;
}

} // namespace

X11OverlayWindow::X11OverlayWindow(X11Connection& connection, Pixels pixels)
    : connection_(connection)
    , window_(xcb_generate_id(connection.xcb())) {
    xcb_connection_t* server = connection_.xcb();
    const Visual visual = visualOf(connection_.screen(), pixels);
    depth_ = visual.depth;
    const xcb_colormap_t colors = xcb_generate_id(server);
    xcb_create_colormap(server, XCB_COLORMAP_ALLOC_NONE, colors, connection_.root(), visual.number);
    // No pixels, no border, no window manager, and a colour map because the visual is another one
    // than the root window's.
    const std::array<std::uint32_t, 4> values{0, 0, 1, colors};
    xcb_create_window(server, depth_, window_, connection_.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.number,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_COLORMAP,
                      values.data());
    // The window keeps it.
    xcb_free_colormap(server, colors);
    describe();
    if (connection_.shape().isAtLeast(1, 1))
        xcb_shape_rectangles(server, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                             XCB_CLIP_ORDERING_UNSORTED, window_, 0, 0, 0, nullptr);
}

X11OverlayWindow::~X11OverlayWindow() {
    xcb_destroy_window(connection_.xcb(), window_);
    connection_.flush();
}

void X11OverlayWindow::describe() {
    const auto set = [&](X11Atom property, xcb_atom_t type, std::uint8_t bits, std::uint32_t count,
                         const void* data) {
        xcb_change_property(connection_.xcb(), XCB_PROP_MODE_REPLACE, window_,
                            connection_.atom(property), type, bits, count, data);
    };
    constexpr std::uint8_t letters = 8;
    constexpr std::uint8_t words = 32;
    constexpr std::array name{'t', 'i', 'l', 'e', 'w', 'r', 'i', 'g', 'h', 't', '\0',
                              'T', 'i', 'l', 'e', 'w', 'r', 'i', 'g', 'h', 't', '\0'};
    set(X11Atom::wmClass, XCB_ATOM_STRING, letters, static_cast<std::uint32_t>(name.size()),
        name.data());
    const std::uint32_t process = unsignedOf(getpid());
    set(X11Atom::netWmPid, XCB_ATOM_CARDINAL, words, 1, &process);
    const std::array types{connection_.atom(X11Atom::kdeNetWmWindowTypeOverride),
                           connection_.atom(X11Atom::netWmWindowTypeNormal)};
    set(X11Atom::netWmWindowType, XCB_ATOM_ATOM, words, static_cast<std::uint32_t>(types.size()),
        types.data());
    // A fullscreen window beneath must not switch the blending off.
    const std::uint32_t never = 2;
    set(X11Atom::netWmBypassCompositor, XCB_ATOM_CARDINAL, words, 1, &never);
}

void X11OverlayWindow::place(const QRect& frame) {
    if (frame == frame_)
        return;
    frame_ = frame;
    const std::array<std::uint32_t, 4> geometry{unsignedOf(frame.x()), unsignedOf(frame.y()),
                                                unsignedOf(frame.width()),
                                                unsignedOf(frame.height())};
    xcb_configure_window(connection_.xcb(), window_,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         geometry.data());
}

void X11OverlayWindow::setPixmap(xcb_pixmap_t pixmap) {
    const std::uint32_t value = pixmap == XCB_NONE ? 0 : pixmap;
    xcb_change_window_attributes(connection_.xcb(), window_,
                                 pixmap == XCB_NONE ? XCB_CW_BACK_PIXEL : XCB_CW_BACK_PIXMAP,
                                 &value);
}

void X11OverlayWindow::refresh(const QRegion& region) {
    if (!isShown_)
        return;
    for (const xcb_rectangle_t& rect : rectanglesOf(region))
        xcb_clear_area(connection_.xcb(), 0, window_, rect.x, rect.y, rect.width, rect.height);
}

void X11OverlayWindow::setOutline(const std::optional<QRegion>& outline) {
    if (!connection_.shape().isPresent)
        return;
    xcb_connection_t* server = connection_.xcb();
    if (!outline) {
        if (std::exchange(isOutlined_, false))
            xcb_shape_mask(server, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window_, 0, 0,
                           XCB_NONE);
        return;
    }
    const auto rectangles = rectanglesOf(*outline);
    xcb_shape_rectangles(server, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, window_, 0, 0,
                         static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    isOutlined_ = true;
}

void X11OverlayWindow::setBlur(const QRegion& region) {
    const xcb_atom_t property = connection_.atom(X11Atom::kdeNetWmBlurBehindRegion);
    if (region.isEmpty()) {
        if (std::exchange(hasBlur_, false))
            xcb_delete_property(connection_.xcb(), window_, property);
        return;
    }
    std::vector<std::uint32_t> rectangles;
    rectangles.reserve(static_cast<std::size_t>(region.rectCount()) * 4);
    for (const QRect& rect : region) {
        for (const int value : {rect.x(), rect.y(), rect.width(), rect.height()})
            rectangles.push_back(unsignedOf(value));
    }
    xcb_change_property(connection_.xcb(), XCB_PROP_MODE_REPLACE, window_, property,
                        XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(rectangles.size()),
                        rectangles.data());
    hasBlur_ = true;
}

void X11OverlayWindow::show() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_.xcb(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    if (!std::exchange(isShown_, true))
        xcb_map_window(connection_.xcb(), window_);
}

void X11OverlayWindow::hide() {
    if (std::exchange(isShown_, false))
        xcb_unmap_window(connection_.xcb(), window_);
}

} // namespace tilewright
