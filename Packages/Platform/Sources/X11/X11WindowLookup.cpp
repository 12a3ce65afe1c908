#include "X11WindowLookup.h"

#include "X11Properties.h"
#include "X11WindowFacts.h"

#include <QRect>
#include <algorithm>
#include <array>
#include <iterator>
#include <xcb/shape.h>

namespace tilewright {
namespace {

constexpr std::uint32_t withdrawnState = 0;
constexpr std::uint32_t normalState = 1;
/// How deep a window manager may bury a client, and how many windows are looked at on each level.
constexpr int deepestClient = 4;
constexpr std::size_t widestLevel = 64;

/// A window of the tree: what it bears, and its children.
struct TreeNode {
    xcb_window_t window;
    xcb_get_property_cookie_t state;
    xcb_get_property_cookie_t type;
    xcb_query_tree_cookie_t tree;
};

/// What a child of the root window holds.
struct Content {
    /// The managed window in it, or it itself; none where nobody manages anything of it.
    std::optional<xcb_window_t> client;
    /// Whether users work in the client.
    bool isForUsers = false;
    /// Whether the client is neither minimised nor on a desktop that does not show.
    bool isShown = false;
};

Content contentOf(X11Connection& connection, xcb_window_t top) {
    // A place may be on a title bar: the client is somewhere in the frame, not under the place.
    std::vector<xcb_window_t> level{top};
    Content content;
    for (int depth = 0; depth < deepestClient && !level.empty() && !content.client; ++depth) {
        std::vector<TreeNode> nodes;
        nodes.reserve(level.size());
        for (const xcb_window_t window : level) {
            nodes.push_back({window, requestProperty(connection, window, X11Atom::wmState),
                             requestProperty(connection, window, X11Atom::netWmWindowType),
                             xcb_query_tree(connection.xcb(), window)});
        }
        level.clear();
        for (const TreeNode& node : nodes) {
            const auto state = takeItems(connection, node.state);
            const auto types = takeItems(connection, node.type);
            const auto tree = connection.reply<xcb_query_tree_reply_t>(node.tree);
            // Children come bottommost first; the topmost client of a frame is its current one.
            if (!state.empty() && state[0] != withdrawnState)
                content = {node.window, isApplicationType(connection, types),
                           state[0] == normalState};
            if (!tree)
                continue;
            const xcb_window_t* children = xcb_query_tree_children(tree.get());
            for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
                if (level.size() < widestLevel)
                    level.push_back(children[i]);
            }
        }
    }
    return content;
}

/// Whether a window of the window manager's own that holds no client only shows something, or only
/// covers what lies beneath, while the window manager is at work.
bool isSeenThrough(X11Connection& connection, xcb_window_t window) {
    const auto attributesCookie = xcb_get_window_attributes(connection.xcb(), window);
    const auto typeCookie = requestProperty(connection, window, X11Atom::netWmWindowType);
    const auto attributes = connection.reply<xcb_get_window_attributes_reply_t>(attributesCookie);
    const auto types = takeItems(connection, typeCookie);
    if (!attributes)
        return false;
    // The type tells more than the events: toolkits ask for all of them, or in a way that does not
    // show here. Menus and panels that are made with one have a type of their own.
    if (!types.empty()) {
        return std::any_of(types.begin(), types.end(), [&](std::uint32_t type) {
            return type == connection.atom(X11Atom::netWmWindowTypeNormal) ||
                   type == connection.atom(X11Atom::netWmWindowTypeNotification);
        });
    }
    return (attributes->all_event_masks & XCB_EVENT_MASK_BUTTON_PRESS) == 0;
}

bool holds(const xcb_shape_get_rectangles_reply_t& shape, QPoint place) {
    const xcb_rectangle_t* rectangles = xcb_shape_get_rectangles_rectangles(&shape);
    return std::any_of(rectangles, rectangles + xcb_shape_get_rectangles_rectangles_length(&shape),
                       [&](const xcb_rectangle_t& part) {
                           return QRect(part.x, part.y, part.width, part.height).contains(place);
                       });
}

/// The children of the root window below one of them, topmost first.
std::vector<xcb_window_t> siblingsBelow(X11Connection& connection, xcb_window_t window) {
    const auto tree = connection.reply<xcb_query_tree_reply_t>(
        xcb_query_tree(connection.xcb(), connection.root()));
    if (!tree)
        return {};
    const xcb_window_t* bottommost = xcb_query_tree_children(tree.get());
    const xcb_window_t* end = bottommost + xcb_query_tree_children_length(tree.get());
    const xcb_window_t* top = std::find(bottommost, end, window);
    // Restacked or gone since it was found.
    if (top == end)
        return {};
    return {std::make_reverse_iterator(top), std::make_reverse_iterator(bottommost)};
}

/// A child of the root window, and a place in it as its shapes count.
struct PlaceInWindow {
    xcb_window_t window;
    QPoint place;
};

/// Those children of the root window that show and have the place within their border.
std::vector<PlaceInWindow> showingAt(X11Connection& connection,
                                     const std::vector<xcb_window_t>& windows, QPoint place) {
    struct Asked {
        xcb_window_t window;
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t geometry;
    };
    xcb_connection_t* xcb = connection.xcb();
    std::vector<Asked> asked;
    asked.reserve(windows.size());
    for (const xcb_window_t window : windows)
        asked.push_back(
            {window, xcb_get_window_attributes(xcb, window), xcb_get_geometry(xcb, window)});
    std::vector<PlaceInWindow> found;
    found.reserve(asked.size());
    for (const Asked& one : asked) {
        const auto attributes = connection.reply<xcb_get_window_attributes_reply_t>(one.attributes);
        const auto geometry = connection.reply<xcb_get_geometry_reply_t>(one.geometry);
        if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
            continue;
        const int border = geometry->border_width;
        const QPoint corner(geometry->x, geometry->y);
        const QRect area(corner,
                         QSize(geometry->width + 2 * border, geometry->height + 2 * border));
        // A shape's origin lies within the border.
        if (area.contains(place))
            found.push_back({one.window, place - corner - QPoint(border, border)});
    }
    return found;
}

/// Those windows whose shapes, of what is seen and of what takes presses, have the place in them.
std::vector<xcb_window_t> shapedAround(X11Connection& connection,
                                       const std::vector<PlaceInWindow>& candidates) {
    constexpr std::array kinds{XCB_SHAPE_SK_BOUNDING, XCB_SHAPE_SK_INPUT};
    const bool hasShapes = connection.shape().isAtLeast(1, 1);
    std::vector<std::array<xcb_shape_get_rectangles_cookie_t, kinds.size()>> asked(
        hasShapes ? candidates.size() : 0);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        for (std::size_t kind = 0; kind < kinds.size(); ++kind)
            asked[i][kind] =
                xcb_shape_get_rectangles(connection.xcb(), candidates[i].window, kinds[kind]);
    }
    std::vector<xcb_window_t> found;
    found.reserve(candidates.size());
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        bool isHit = true;
        for (std::size_t kind = 0; hasShapes && kind < kinds.size(); ++kind) {
            const auto shape = connection.reply<xcb_shape_get_rectangles_reply_t>(asked[i][kind]);
            isHit = isHit && shape && holds(*shape, candidates[i].place);
        }
        if (isHit)
            found.push_back(candidates[i].window);
    }
    return found;
}

/// The children of the root window below one of them that the server would hand a press at the
/// place to, were those above not there. Topmost first.
std::vector<xcb_window_t> windowsBelow(X11Connection& connection, xcb_window_t window,
                                       QPoint place) {
    return shapedAround(connection,
                        showingAt(connection, siblingsBelow(connection, window), place));
}

} // namespace

std::optional<xcb_window_t> applicationWindowAt(X11Connection& connection,
                                                const X11WindowManagerWatch& windowManager,
                                                QPoint place) {
    const auto x = static_cast<std::int16_t>(std::clamp(place.x(), -32768, 32767));
    const auto y = static_cast<std::int16_t>(std::clamp(place.y(), -32768, 32767));
    const auto top = connection.reply<xcb_translate_coordinates_reply_t>(
        xcb_translate_coordinates(connection.xcb(), connection.root(), connection.root(), x, y));
    if (!top || top->child == XCB_NONE)
        return std::nullopt;

    const auto isCover = [&](xcb_window_t window) {
        return windowManager.made(window) && isSeenThrough(connection, window);
    };
    if (const Content content = contentOf(connection, top->child); content.client)
        return content.isForUsers ? content.client : std::nullopt;
    if (!isCover(top->child))
        return std::nullopt;
    for (const xcb_window_t window : windowsBelow(connection, top->child, place)) {
        const Content content = contentOf(connection, window);
        // Compositing window managers keep windows on the server that the user has put out of
        // sight, beneath a cover.
        if (content.client && !content.isShown)
            continue;
        if (content.client)
            return content.isForUsers ? content.client : std::nullopt;
        if (!isCover(window))
            return std::nullopt;
    }
    return std::nullopt;
}

std::optional<xcb_window_t> onlyApplicationWindowIn(X11Connection& connection,
                                                    const std::vector<xcb_window_t>& tops) {
    std::optional<xcb_window_t> only;
    for (const xcb_window_t top : tops) {
        const Content content = contentOf(connection, top);
        if (!content.client || !content.isForUsers || !content.isShown)
            continue;
        if (only)
            return std::nullopt;
        only = content.client;
    }
    return only;
}

} // namespace tilewright
