#include "XInspector.h"

#include <QColor>
#include <sstream>

namespace tilewright::testing {

namespace {

constexpr quint32 maximumItems = 1'000'000;

} // namespace

XInspector::XInspector(const QString& display)
    : client_(display) {}

QSize XInspector::screenSize() const {
    const QRect area = clientFrame(root());
    return area.size();
}

QByteArray XInspector::bytesProperty(Window window, const char* name) const {
    const XReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection(),
                               xcb_get_property(connection(), 0, window, atom(name),
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, maximumItems),
                               nullptr));
    if (!reply)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

std::vector<quint32> XInspector::property(Window window, const char* name) const {
    const XReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection(),
                               xcb_get_property(connection(), 0, window, atom(name),
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, maximumItems),
                               nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* items = static_cast<const quint32*>(xcb_get_property_value(reply.get()));
    return {items, items + reply->value_len};
}

bool XInspector::hasAtom(Window window, const char* property, const char* atomName) const {
    const quint32 wanted = atom(atomName);
    for (const quint32 item : this->property(window, property)) {
        if (item == wanted)
            return true;
    }
    return false;
}

std::vector<XInspector::Window> XInspector::allWindows() const {
    std::vector<Window> windows{root()};
    for (std::size_t next = 0; next < windows.size(); ++next) {
        const XReply<xcb_query_tree_reply_t> reply(xcb_query_tree_reply(
            connection(), xcb_query_tree(connection(), windows[next]), nullptr));
        if (!reply)
            continue;
        const xcb_window_t* children = xcb_query_tree_children(reply.get());
        windows.insert(windows.end(), children,
                       children + xcb_query_tree_children_length(reply.get()));
    }
    windows.erase(windows.begin());
    return windows;
}

std::vector<XInspector::Window> XInspector::windowsOf(pid_t process) const {
    std::vector<Window> windows = allWindows();
    std::erase_if(
        windows, [&](Window window) { return processID(window) != static_cast<quint32>(process); });
    return windows;
}

std::vector<XInspector::Window>
XInspector::clients(const std::function<bool(Window)>& predicate) const {
    std::vector<Window> found;
    for (const Window window : allWindows()) {
        if (!property(window, "WM_STATE").empty() && (!predicate || predicate(window)))
            found.push_back(window);
    }
    return found;
}

std::optional<XInspector::Window> XInspector::clientTitled(const QString& wanted) const {
    const auto found = clients([&](Window window) { return title(window) == wanted; });
    return found.empty() ? std::nullopt : std::optional(found.front());
}

QString XInspector::title(Window window) const {
    const QByteArray name = bytesProperty(window, "_NET_WM_NAME");
    return QString::fromUtf8(name.isEmpty() ? bytesProperty(window, "WM_NAME") : name);
}

quint32 XInspector::processID(Window window) const {
    const auto value = property(window, "_NET_WM_PID");
    return value.empty() ? 0 : value.front();
}

bool XInspector::exists(Window window) const {
    return XReply<xcb_get_window_attributes_reply_t>(xcb_get_window_attributes_reply(
               connection(), xcb_get_window_attributes(connection(), window), nullptr)) != nullptr;
}

bool XInspector::isMapped(Window window) const {
    const XReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        connection(), xcb_get_window_attributes(connection(), window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool XInspector::isOverrideRedirect(Window window) const {
    const XReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        connection(), xcb_get_window_attributes(connection(), window), nullptr));
    return reply && reply->override_redirect != 0;
}

int XInspector::depth(Window window) const {
    const XReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection(), xcb_get_geometry(connection(), window), nullptr));
    return geometry ? geometry->depth : 0;
}

QRect XInspector::clientFrame(Window window) const {
    const XReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection(), xcb_get_geometry(connection(), window), nullptr));
    const XReply<xcb_translate_coordinates_reply_t> origin(xcb_translate_coordinates_reply(
        connection(), xcb_translate_coordinates(connection(), window, root(), 0, 0), nullptr));
    if (!geometry || !origin)
        return {};
    return {origin->dst_x, origin->dst_y, geometry->width, geometry->height};
}

QRect XInspector::outerFrame(Window window) const {
    const QRect client = clientFrame(window);
    const auto shadow = property(window, "_GTK_FRAME_EXTENTS");
    if (shadow.size() == 4) {
        return client.adjusted(static_cast<int>(shadow[0]), static_cast<int>(shadow[2]),
                               -static_cast<int>(shadow[1]), -static_cast<int>(shadow[3]));
    }
    const auto frame = property(window, "_NET_FRAME_EXTENTS");
    if (frame.size() == 4) {
        return client.adjusted(-static_cast<int>(frame[0]), -static_cast<int>(frame[2]),
                               static_cast<int>(frame[1]), static_cast<int>(frame[3]));
    }
    // No extents told: the frame is the ancestor just below the root.
    return clientFrame(toplevelOf(window));
}

XInspector::Window XInspector::toplevelOf(Window window) const {
    Window current = window;
    for (;;) {
        const XReply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection(), xcb_query_tree(connection(), current), nullptr));
        if (!tree || tree->parent == root() || tree->parent == 0)
            break;
        current = tree->parent;
    }
    return current;
}

XInspector::Window XInspector::toplevelAt(QPoint place) const {
    const XReply<xcb_translate_coordinates_reply_t> reply(xcb_translate_coordinates_reply(
        connection(),
        xcb_translate_coordinates(connection(), root(), root(), static_cast<qint16>(place.x()),
                                  static_cast<qint16>(place.y())),
        nullptr));
    return reply ? reply->child : 0;
}

XInspector::Window XInspector::activeWindow() const {
    const auto value = property(root(), "_NET_ACTIVE_WINDOW");
    return value.empty() ? 0 : value.front();
}

XInspector::Window XInspector::inputFocus() const {
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
    return reply ? reply->focus : 0;
}

bool XInspector::isModifierHeld() const {
    const XReply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(connection(), xcb_query_pointer(connection(), root()), nullptr));
    constexpr unsigned modifiers =
        XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
    return reply && (reply->mask & modifiers) != 0;
}

bool XInspector::hasWindowManager() const {
    const auto check = property(root(), "_NET_SUPPORTING_WM_CHECK");
    return !check.empty() && exists(check.front()) &&
           property(check.front(), "_NET_SUPPORTING_WM_CHECK") == check;
}

bool XInspector::hasCompositor() const {
    const XReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection(), xcb_get_selection_owner(connection(), atom("_NET_WM_CM_S0")), nullptr));
    return reply && reply->owner != 0;
}

QByteArray XInspector::atomName(quint32 atom) const {
    const XReply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(connection(), xcb_get_atom_name(connection(), atom), nullptr));
    return reply ? QByteArray(xcb_get_atom_name_name(reply.get()),
                              xcb_get_atom_name_name_length(reply.get()))
                 : QByteArray("?");
}

std::string XInspector::describe(Window window) const {
    const QRect outer = outerFrame(window);
    std::ostringstream text;
    text << "  " << window << " \"" << title(window).toStdString() << "\" process "
         << processID(window) << ", " << outer.width() << "x" << outer.height() << " at "
         << outer.x() << "," << outer.y() << (isMapped(window) ? "" : ", not viewable")
         << (isOverrideRedirect(window) ? ", override-redirect" : "");
    if (const auto state = property(window, "WM_STATE"); !state.empty())
        text << ", WM_STATE " << state.front();
    for (const quint32 state : property(window, "_NET_WM_STATE"))
        text << " " << atomName(state).toStdString();
    text << "\n";
    return text.str();
}

std::string XInspector::describe() const {
    std::ostringstream text;
    const XReply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(connection(), xcb_query_pointer(connection(), root()), nullptr));
    if (!pointer)
        return "the X server does not answer\n";
    text << "pointer at " << pointer->root_x << "," << pointer->root_y << " above "
         << pointer->child << ", buttons and keys 0x" << std::hex << pointer->mask << std::dec
         << "; active " << activeWindow() << ", focus " << inputFocus() << "; compositor "
         << (hasCompositor() ? "yes" : "no") << "; windows:\n";
    for (const Window window : allWindows()) {
        const bool isClient = !property(window, "WM_STATE").empty();
        if (isClient || (isOverrideRedirect(window) && isMapped(window)))
            text << describe(window);
    }
    return text.str();
}

QImage XInspector::screenshot(QRect area) const {
    if (area.isEmpty())
        area = clientFrame(root());
    const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
        connection(),
        xcb_get_image(connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, root(),
                      static_cast<qint16>(area.x()), static_cast<qint16>(area.y()),
                      static_cast<quint16>(area.width()), static_cast<quint16>(area.height()), ~0U),
        nullptr));
    if (!reply)
        return {};
    return QImage(xcb_get_image_data(reply.get()), area.width(), area.height(), area.width() * 4,
                  QImage::Format_RGB32)
        .copy();
}

QColor XInspector::pixel(QPoint point) const {
    const QImage image = screenshot(QRect(point, QSize(1, 1)));
    return image.isNull() ? QColor() : image.pixelColor(0, 0);
}

} // namespace tilewright::testing
