#pragma once

#include "DesktopSession.h"
#include "Waiting.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

namespace tilewright::testing {

/// What a window tells of itself before it shows.
struct BareClientTraits {
    /// Twelve values make it a panel.
    std::vector<quint32> strut;
    /// The process that it claims to be of; 0 where it tells of none.
    quint32 processID = 0;
    bool skipsTaskbar = false;
    /// The window whose dialog it is; 0 for a window of its own.
    XInspector::Window dialogOf = 0;
};

/// A window that a test itself makes and ends, on a connection of its own: the least that a window
/// manager manages. With a strut it is a panel.
class BareClient {
public:
    /// A window for users, or, with twelve strut values, a panel.
    BareClient(const QString& display, const QRect& area, const std::vector<quint32>& strut = {})
        : BareClient(display, area, BareClientTraits{strut, 0, false, 0}) {}
    BareClient(const QString& display, const QRect& area, const BareClientTraits& traits)
        : connection_(xcb_connect(display.toLatin1().constData(), nullptr)) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        window_ = xcb_generate_id(connection_);
        const quint32 background = screen->white_pixel;
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root,
                          static_cast<qint16>(area.x()), static_cast<qint16>(area.y()),
                          static_cast<quint16>(area.width()), static_cast<quint16>(area.height()),
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL,
                          &background);
        // User's place, user's size: the window manager puts it there.
        const std::array<quint32, 18> hints{1U | 2U, quint32(area.x()), quint32(area.y()),
                                            quint32(area.width()), quint32(area.height())};
        set(XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, hints.data(), hints.size());
        if (!traits.strut.empty())
            becomePanel(traits.strut);
        if (traits.processID != 0)
            set(atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, &traits.processID, 1);
        if (traits.skipsTaskbar) {
            const quint32 skip = atom("_NET_WM_STATE_SKIP_TASKBAR");
            set(atom("_NET_WM_STATE"), XCB_ATOM_ATOM, &skip, 1);
        }
        if (traits.dialogOf != 0) {
            const quint32 dialog = atom("_NET_WM_WINDOW_TYPE_DIALOG");
            set(atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, &dialog, 1);
            set(XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, &traits.dialogOf, 1);
        }
        // A window manager that is just starting may lose the request: it is asked again then.
        const auto showsUp = [&] {
            xcb_map_window(connection_, window_);
            sync();
            return waitUntil([&] { return isManaged(); }, std::chrono::seconds(1));
        };
        const bool isShown = waitUntil([&] {
            if (showsUp())
                return true;
            xcb_unmap_window(connection_, window_);
            sync();
            return false;
        });
        EXPECT_TRUE(isShown) << "the window manager does not manage the window";
    }
    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;
    ~BareClient() { xcb_disconnect(connection_); }

    [[nodiscard]] XInspector::Window window() const { return window_; }
    /// Says, at any time, that it is a panel and what it reserves.
    void becomePanel(const std::vector<quint32>& strut) {
        const quint32 dock = atom("_NET_WM_WINDOW_TYPE_DOCK");
        set(atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, &dock, 1);
        setStrut(strut);
    }
    void setStrut(const std::vector<quint32>& strut) {
        set(atom("_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL, strut.data(), strut.size());
        sync();
    }
    /// Ends the window; returns when the server has done it.
    void destroy() {
        xcb_destroy_window(connection_, window_);
        sync();
    }

private:
    void set(quint32 property, quint32 type, const quint32* items, std::size_t count) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, type, 32,
                            static_cast<quint32>(count), items);
    }
    quint32 atom(const char* name) {
        auto* reply = xcb_intern_atom_reply(
            connection_, xcb_intern_atom(connection_, 0, static_cast<quint16>(qstrlen(name)), name),
            nullptr);
        const quint32 value = reply ? reply->atom : 0;
        std::free(reply); // NOLINT: xcb allocates with malloc
        return value;
    }
    [[nodiscard]] bool isManaged() {
        auto* reply = xcb_get_property_reply(
            connection_,
            xcb_get_property(connection_, 0, window_, atom("WM_STATE"), XCB_ATOM_ANY, 0, 2),
            nullptr);
        const bool isSet = reply && reply->format == 32;
        std::free(reply); // NOLINT: xcb allocates with malloc
        return isSet;
    }
    void sync() {
        // NOLINTNEXTLINE: xcb allocates with malloc
        std::free(
            xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    }

    xcb_connection_t* connection_;
    quint32 window_ = 0;
};

} // namespace tilewright::testing
