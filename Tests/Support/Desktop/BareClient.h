#pragma once

#include "DesktopSession.h"
#include "Repetition.h"
#include "Waiting.h"
#include "XClient.h"

#include <gtest/gtest.h>

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
    /// It is there to find out whether a window manager that has just started looks after windows
    /// yet: one that gets lost is nothing to tell of.
    bool isTrial = false;
};

/// A window that a test itself makes and ends, on a connection of its own: the least that a window
/// manager manages. With a strut it is a panel.
class BareClient {
public:
    /// A window for users, or, with twelve strut values, a panel.
    BareClient(const QString& display, const QRect& area, const std::vector<quint32>& strut = {})
        : BareClient(display, area, BareClientTraits{strut, 0, false, 0}) {}
    BareClient(const QString& display, const QRect& area, const BareClientTraits& traits)
        : client_(display)
        , window_(xcb_generate_id(client_.xcb())) {
        const quint32 background = client_.screen().white_pixel;
        xcb_create_window(client_.xcb(), XCB_COPY_FROM_PARENT, window_, client_.root(),
                          static_cast<qint16>(area.x()), static_cast<qint16>(area.y()),
                          static_cast<quint16>(area.width()), static_cast<quint16>(area.height()),
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL,
                          &background);
        // User's place, user's size: the window manager puts it there.
        std::vector<quint32> hints{1U | 2U, quint32(area.x()), quint32(area.y()),
                                   quint32(area.width()), quint32(area.height())};
        hints.resize(18);
        set(XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, hints);
        if (!traits.strut.empty())
            becomePanel(traits.strut);
        if (traits.processID != 0)
            set("_NET_WM_PID", XCB_ATOM_CARDINAL, {traits.processID});
        if (traits.skipsTaskbar)
            set("_NET_WM_STATE", XCB_ATOM_ATOM, {client_.atom("_NET_WM_STATE_SKIP_TASKBAR")});
        if (traits.dialogOf != 0) {
            set("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {client_.atom("_NET_WM_WINDOW_TYPE_DIALOG")});
            set(XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, {traits.dialogOf});
        }
        // A window manager that is just starting may lose the request: it is asked again then.
        std::chrono::milliseconds nextWait{traits.isTrial ? 60 : 1000};
        const auto showsUp = [&] {
            xcb_map_window(client_.xcb(), window_);
            client_.sync();
            nextWait *= 2;
            return waitUntil([&] { return isManaged(); }, nextWait / 2);
        };
        const bool isShown = waitUntil([&] {
            if (showsUp())
                return true;
            if (!traits.isTrial)
                tellRepetition("a window manager that was just starting lost a window");
            xcb_unmap_window(client_.xcb(), window_);
            client_.sync();
            return false;
        });
        EXPECT_TRUE(isShown) << "the window manager does not manage the window";
    }
    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;

    [[nodiscard]] XInspector::Window window() const { return window_; }
    /// Says, at any time, that it is a panel and what it reserves.
    void becomePanel(const std::vector<quint32>& strut) {
        set("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {client_.atom("_NET_WM_WINDOW_TYPE_DOCK")});
        setStrut(strut);
    }
    void setStrut(const std::vector<quint32>& strut) {
        set("_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL, strut);
        client_.sync();
    }
    /// Ends the window; returns when the server has done it.
    void destroy() {
        xcb_destroy_window(client_.xcb(), window_);
        client_.sync();
    }

private:
    void set(xcb_atom_t property, xcb_atom_t type, const std::vector<quint32>& items) {
        client_.setProperty(window_, property, type, items);
    }
    void set(const char* property, xcb_atom_t type, const std::vector<quint32>& items) {
        set(client_.atom(property), type, items);
    }
    [[nodiscard]] bool isManaged() const {
        const XReply<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(client_.xcb(),
                                   xcb_get_property(client_.xcb(), 0, window_,
                                                    client_.atom("WM_STATE"), XCB_ATOM_ANY, 0, 2),
                                   nullptr));
        return reply && reply->format == 32;
    }

    XClient client_;
    xcb_window_t window_;
};

} // namespace tilewright::testing
