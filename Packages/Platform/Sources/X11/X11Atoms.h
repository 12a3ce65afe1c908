#pragma once

#include <array>
#include <cstddef>
#include <xcb/xcb.h>

namespace tilewright {

/// The names that this program exchanges with window managers and other clients. A new one needs a
/// line here and nothing else: all are interned in one round trip when a connection opens.
#define TILEWRIGHT_X11_ATOMS(ATOM)                                                                 \
    ATOM(edid, "EDID")                                                                             \
    ATOM(gtkFrameExtents, "_GTK_FRAME_EXTENTS")                                                    \
    ATOM(gtkWorkareas, "_GTK_WORKAREAS")                                                           \
    ATOM(gtkWorkareas0, "_GTK_WORKAREAS_D0")                                                       \
    ATOM(gtkWorkareas1, "_GTK_WORKAREAS_D1")                                                       \
    ATOM(gtkWorkareas2, "_GTK_WORKAREAS_D2")                                                       \
    ATOM(gtkWorkareas3, "_GTK_WORKAREAS_D3")                                                       \
    ATOM(kdeNetWmBlurBehindRegion, "_KDE_NET_WM_BLUR_BEHIND_REGION")                               \
    ATOM(kdeNetWmWindowTypeOverride, "_KDE_NET_WM_WINDOW_TYPE_OVERRIDE")                           \
    ATOM(netActiveWindow, "_NET_ACTIVE_WINDOW")                                                    \
    ATOM(netClientList, "_NET_CLIENT_LIST")                                                        \
    ATOM(netCurrentDesktop, "_NET_CURRENT_DESKTOP")                                                \
    ATOM(netFrameExtents, "_NET_FRAME_EXTENTS")                                                    \
    ATOM(netMoveresizeWindow, "_NET_MOVERESIZE_WINDOW")                                            \
    ATOM(netRequestFrameExtents, "_NET_REQUEST_FRAME_EXTENTS")                                     \
    ATOM(netSupported, "_NET_SUPPORTED")                                                           \
    ATOM(netSupportingWmCheck, "_NET_SUPPORTING_WM_CHECK")                                         \
    ATOM(netWmBypassCompositor, "_NET_WM_BYPASS_COMPOSITOR")                                       \
    ATOM(netWmDesktop, "_NET_WM_DESKTOP")                                                          \
    ATOM(netWmPid, "_NET_WM_PID")                                                                  \
    ATOM(netWmState, "_NET_WM_STATE")                                                              \
    ATOM(netWmStateFullscreen, "_NET_WM_STATE_FULLSCREEN")                                         \
    ATOM(netWmStateMaximizedHorz, "_NET_WM_STATE_MAXIMIZED_HORZ")                                  \
    ATOM(netWmStateMaximizedVert, "_NET_WM_STATE_MAXIMIZED_VERT")                                  \
    ATOM(netWmStateShaded, "_NET_WM_STATE_SHADED")                                                 \
    ATOM(netWmStateSkipTaskbar, "_NET_WM_STATE_SKIP_TASKBAR")                                      \
    ATOM(netWmStrut, "_NET_WM_STRUT")                                                              \
    ATOM(netWmStrutPartial, "_NET_WM_STRUT_PARTIAL")                                               \
    ATOM(netWmWindowType, "_NET_WM_WINDOW_TYPE")                                                   \
    ATOM(netWmWindowTypeCombo, "_NET_WM_WINDOW_TYPE_COMBO")                                        \
    ATOM(netWmWindowTypeDesktop, "_NET_WM_WINDOW_TYPE_DESKTOP")                                    \
    ATOM(netWmWindowTypeDialog, "_NET_WM_WINDOW_TYPE_DIALOG")                                      \
    ATOM(netWmWindowTypeDnd, "_NET_WM_WINDOW_TYPE_DND")                                            \
    ATOM(netWmWindowTypeDock, "_NET_WM_WINDOW_TYPE_DOCK")                                          \
    ATOM(netWmWindowTypeDropdownMenu, "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU")                         \
    ATOM(netWmWindowTypeMenu, "_NET_WM_WINDOW_TYPE_MENU")                                          \
    ATOM(netWmWindowTypeNormal, "_NET_WM_WINDOW_TYPE_NORMAL")                                      \
    ATOM(netWmWindowTypeNotification, "_NET_WM_WINDOW_TYPE_NOTIFICATION")                          \
    ATOM(netWmWindowTypePopupMenu, "_NET_WM_WINDOW_TYPE_POPUP_MENU")                               \
    ATOM(netWmWindowTypeSplash, "_NET_WM_WINDOW_TYPE_SPLASH")                                      \
    ATOM(netWmWindowTypeToolbar, "_NET_WM_WINDOW_TYPE_TOOLBAR")                                    \
    ATOM(netWmWindowTypeTooltip, "_NET_WM_WINDOW_TYPE_TOOLTIP")                                    \
    ATOM(netWmWindowTypeUtility, "_NET_WM_WINDOW_TYPE_UTILITY")                                    \
    ATOM(netWorkarea, "_NET_WORKAREA")                                                             \
    ATOM(wmClass, "WM_CLASS")                                                                      \
    ATOM(wmState, "WM_STATE")                                                                      \
    ATOM(xsettingsSettings, "_XSETTINGS_SETTINGS")

/// Names an atom of this program.
enum class X11Atom : std::size_t {
#define TILEWRIGHT_X11_ATOM_NAME(name, text) name,
    TILEWRIGHT_X11_ATOMS(TILEWRIGHT_X11_ATOM_NAME)
#undef TILEWRIGHT_X11_ATOM_NAME
        count
};

/// The atoms' numbers on one server.
using X11AtomTable = std::array<xcb_atom_t, static_cast<std::size_t>(X11Atom::count)>;

} // namespace tilewright
