#include "X11WindowFacts.h"

#include "X11Properties.h"

#include <algorithm>
#include <utility>

namespace tilewright {
namespace {

constexpr std::uint32_t withdrawnState = 0;
/// How deep a window manager may bury a client.
constexpr int deepestClient = 4;

X11Extents extentsFrom(const std::vector<std::uint32_t>& items) {
    const auto at = [&](std::size_t i) {
        return static_cast<int>(std::min<std::uint32_t>(items[i], 32767));
    };
    return items.size() < 4 ? X11Extents{} : X11Extents{at(0), at(1), at(2), at(3)};
}

bool contains(const std::vector<std::uint32_t>& items, xcb_atom_t atom) {
    return std::find(items.begin(), items.end(), atom) != items.end();
}

/// What the first type that this program knows makes of a window.
void applyType(const X11Connection& connection, const std::vector<std::uint32_t>& types,
               X11WindowFacts& facts) {
    using enum X11Atom;
    facts.isApplicationWindow = true;
    for (const std::uint32_t type : types) {
        const auto isOneOf = [&](std::initializer_list<X11Atom> atoms) {
            return std::any_of(atoms.begin(), atoms.end(),
                               [&](X11Atom atom) { return connection.atom(atom) == type; });
        };
        if (isOneOf({netWmWindowTypeNormal, netWmWindowTypeUtility, netWmWindowTypeToolbar}))
            return;
        if (isOneOf({netWmWindowTypeDialog})) {
            facts.isDialog = true;
            return;
        }
        if (isOneOf({netWmWindowTypeDesktop, netWmWindowTypeDock, netWmWindowTypeSplash,
                     netWmWindowTypeNotification, netWmWindowTypeMenu, netWmWindowTypeDropdownMenu,
                     netWmWindowTypePopupMenu, netWmWindowTypeTooltip, netWmWindowTypeCombo,
                     netWmWindowTypeDnd})) {
            facts.isApplicationWindow = false;
            return;
        }
    }
}

void applyState(const X11Connection& connection, const std::vector<std::uint32_t>& states,
                X11WindowFacts& facts) {
    const auto has = [&](X11Atom atom) { return contains(states, connection.atom(atom)); };
    facts.isMaximized =
        has(X11Atom::netWmStateMaximizedHorz) || has(X11Atom::netWmStateMaximizedVert);
    facts.isFullscreen = has(X11Atom::netWmStateFullscreen);
    facts.isShaded = has(X11Atom::netWmStateShaded);
    facts.skipsTaskbar = has(X11Atom::netWmStateSkipTaskbar);
}

/// What the frame in the window tree adds to the client, for window managers that do not tell.
X11Extents extentsFromTree(X11Connection& connection, xcb_window_t window, const QRect& client) {
    xcb_window_t top = window;
    for (int depth = 0; depth < deepestClient; ++depth) {
        const auto tree =
            connection.reply<xcb_query_tree_reply_t>(xcb_query_tree(connection.xcb(), top));
        if (!tree)
            return {};
        if (tree->parent == tree->root || tree->parent == XCB_NONE)
            break;
        top = tree->parent;
    }
    if (top == window)
        return {};
    const auto geometry =
        connection.reply<xcb_get_geometry_reply_t>(xcb_get_geometry(connection.xcb(), top));
    if (!geometry)
        return {};
    const int border = geometry->border_width;
    const QRect frame(geometry->x, geometry->y, geometry->width + 2 * border,
                      geometry->height + 2 * border);
    return {client.x() - frame.x(), frame.right() - client.right(), client.y() - frame.y(),
            frame.bottom() - client.bottom()};
}

bool isManagedState(const std::vector<std::uint32_t>& state) {
    return !state.empty() && state[0] != withdrawnState;
}

} // namespace

bool isApplicationType(const X11Connection& connection, const std::vector<std::uint32_t>& types) {
    X11WindowFacts facts;
    applyType(connection, types, facts);
    return facts.isApplicationWindow;
}

X11SizeLimits X11SizeLimits::fromHints(const std::vector<std::uint32_t>& hints) {
    constexpr std::uint32_t hasMinimum = 1U << 4U;
    constexpr std::uint32_t hasMaximum = 1U << 5U;
    constexpr std::uint32_t hasIncrement = 1U << 6U;
    constexpr std::uint32_t hasBase = 1U << 8U;
    constexpr std::size_t lengthWithoutBase = 11;
    constexpr std::size_t lengthWithBase = 17;
    X11SizeLimits limits;
    if (hints.size() < lengthWithoutBase)
        return limits;
    const auto has = [&](std::uint32_t flag) { return (hints[0] & flag) != 0; };
    const auto size = [&](std::size_t at) {
        const auto bounded = [](std::uint32_t value) {
            return static_cast<int>(std::min<std::uint32_t>(value, 32767));
        };
        return QSize(bounded(hints[at]), bounded(hints[at + 1]));
    };
    const bool tellsBase = has(hasBase) && hints.size() >= lengthWithBase;
    // Either stands in for the other where it is missing.
    if (has(hasMinimum))
        limits.minimum = limits.base = size(5);
    if (tellsBase)
        limits.base = size(15);
    if (tellsBase && !has(hasMinimum))
        limits.minimum = limits.base;
    limits.minimum = limits.minimum.expandedTo(QSize(1, 1));
    if (has(hasIncrement))
        limits.increment = size(9).expandedTo(QSize(1, 1));
    // Clients contradict themselves: what they cannot do without counts.
    if (has(hasMaximum))
        limits.maximum = size(7).expandedTo(limits.minimum);
    return limits;
}

xcb_gravity_t gravityFromHints(const std::vector<std::uint32_t>& hints) {
    constexpr std::uint32_t hasGravity = 1U << 9U;
    constexpr std::size_t lengthWithGravity = 18;
    if (hints.size() < lengthWithGravity || (hints[0] & hasGravity) == 0 ||
        hints[17] < XCB_GRAVITY_NORTH_WEST || hints[17] > XCB_GRAVITY_STATIC)
        return XCB_GRAVITY_NORTH_WEST;
    return static_cast<xcb_gravity_t>(hints[17]);
}

QSize X11SizeLimits::constrained(QSize wish) const {
    const auto dimension = [](int value, int least, int most, int start, int step) {
        const int within = std::clamp(value, least, most);
        return within <= start ? within : start + (within - start) / step * step;
    };
    return {
        dimension(wish.width(), minimum.width(), maximum.width(), base.width(), increment.width()),
        dimension(wish.height(), minimum.height(), maximum.height(), base.height(),
                  increment.height())};
}

QRect X11WindowFacts::outerFrame() const {
    return client.adjusted(shadow.left - decorations.left, shadow.top - decorations.top,
                           decorations.right - shadow.right, decorations.bottom - shadow.bottom);
}

QSize X11WindowFacts::clientSize(QSize outer) const {
    return outer - (outerSize(QSize(0, 0)));
}

QSize X11WindowFacts::outerSize(QSize clientSize) const {
    return {clientSize.width() + decorations.left + decorations.right - shadow.left - shadow.right,
            clientSize.height() + decorations.top + decorations.bottom - shadow.top -
                shadow.bottom};
}

QPoint X11WindowFacts::gravityOffset() const {
    if (gravity == XCB_GRAVITY_STATIC)
        return {decorations.left, decorations.top};
    // The others are three rows of three, from the upper left on.
    const int place = gravity - XCB_GRAVITY_NORTH_WEST;
    return {(decorations.left + decorations.right) * (place % 3) / 2,
            (decorations.top + decorations.bottom) * (place / 3) / 2};
}

X11WindowLook::X11WindowLook(X11Connection& connection, xcb_window_t window)
    : connection_(connection)
    , window_(window) {
    xcb_connection_t* xcb = connection.xcb();
    const auto property = [&](X11Atom atom) { return requestProperty(connection, window, atom); };
    // In braces these are asked in this order.
    cookies_ = Cookies{.attributes = xcb_get_window_attributes(xcb, window),
                       .geometry = xcb_get_geometry(xcb, window),
                       .origin = xcb_translate_coordinates(xcb, window, connection.root(), 0, 0),
                       .managed = property(X11Atom::wmState),
                       .state = property(X11Atom::netWmState),
                       .desktop = property(X11Atom::netWmDesktop),
                       .type = property(X11Atom::netWmWindowType),
                       .process = property(X11Atom::netWmPid),
                       .decorations = property(X11Atom::netFrameExtents),
                       .shadow = property(X11Atom::gtkFrameExtents),
                       .hints = requestProperty(connection, window, XCB_ATOM_WM_NORMAL_HINTS),
                       .last = xcb_get_input_focus(xcb)};
}

X11WindowLook::X11WindowLook(X11WindowLook&& other) noexcept
    : connection_(other.connection_)
    , window_(other.window_)
    , cookies_(std::exchange(other.cookies_, std::nullopt)) {}

X11WindowLook::~X11WindowLook() {
    if (!cookies_)
        return;
    const Cookies& asked = *cookies_;
    for (const unsigned int sequence :
         {asked.attributes.sequence, asked.geometry.sequence, asked.origin.sequence,
          asked.managed.sequence, asked.state.sequence, asked.desktop.sequence, asked.type.sequence,
          asked.process.sequence, asked.decorations.sequence, asked.shadow.sequence,
          asked.hints.sequence, asked.last.sequence})
        xcb_discard_reply(connection_.xcb(), sequence);
}

X11WindowFacts X11WindowLook::take() {
    const Cookies asked = *std::exchange(cookies_, std::nullopt);
    X11WindowFacts facts;
    const auto attributes = connection_.reply<xcb_get_window_attributes_reply_t>(asked.attributes);
    const auto geometry = connection_.reply<xcb_get_geometry_reply_t>(asked.geometry);
    const auto origin = connection_.reply<xcb_translate_coordinates_reply_t>(asked.origin);
    const auto managed = takeItems(connection_, asked.managed);
    const auto states = takeItems(connection_, asked.state);
    const auto desktop = takeItems(connection_, asked.desktop);
    const auto types = takeItems(connection_, asked.type);
    const auto process = takeItems(connection_, asked.process);
    const auto decorations = takeItems(connection_, asked.decorations);
    const auto shadow = takeItems(connection_, asked.shadow);
    const auto hints = takeItems(connection_, asked.hints);
    facts.isUnknown = !connection_.reply<xcb_get_input_focus_reply_t>(asked.last);
    if (!attributes || !geometry || !origin)
        return facts;

    facts.exists = true;
    // Some window managers call the windows of the desktops that do not show withdrawn. Those that
    // really are have lost their desktop.
    const bool isElsewhere = !managed.empty() && !desktop.empty();
    facts.isManaged =
        (isManagedState(managed) || isElsewhere) && attributes->override_redirect == 0;
    applyState(connection_, states, facts);
    applyType(connection_, types, facts);
    facts.isApplicationWindow = facts.isApplicationWindow && facts.isManaged;
    facts.processID = process.empty() ? 0 : static_cast<qint64>(process[0]);
    facts.client = QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
    facts.shadow = extentsFrom(shadow);
    facts.tellsShadow = shadow.size() >= 4;
    facts.limits = X11SizeLimits::fromHints(hints);
    facts.gravity = gravityFromHints(hints);
    facts.decorations = decorations.size() >= 4 || !facts.isManaged
                            ? extentsFrom(decorations)
                            : extentsFromTree(connection_, window_, facts.client);
    return facts;
}

} // namespace tilewright
