#include "X11Qt.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>

// Last: its macros are in the way of Qt's names.
#include <X11/Xlib.h>

namespace tilewright::x11qt {

xcb_connection_t* connection() {
    auto* application = qGuiApp;
    if (!application)
        return nullptr;
    auto* x11 = application->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

bool ownsWindow(xcb_window_t window) {
    xcb_connection_t* qtConnection = connection();
    if (!qtConnection || window == XCB_NONE)
        return false;
    const xcb_setup_t* setup = xcb_get_setup(qtConnection);
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

std::vector<xcb_window_t> windowsTakingInput() {
    std::vector<xcb_window_t> windows;
    if (!connection())
        return windows;
    for (const QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible() && window->handle() &&
            !window->flags().testFlag(Qt::WindowTransparentForInput))
            windows.push_back(static_cast<xcb_window_t>(window->winId()));
    }
    return windows;
}

bool hasGrab() {
    return qApp && (QApplication::activePopupWidget() || QWidget::mouseGrabber());
}

void forgetSentTitles() {
    auto* application = qGuiApp;
    if (!application)
        return;
    if (auto* x11 = application->nativeInterface<QNativeInterface::QX11Application>())
        XSync(x11->display(), False);
}

} // namespace tilewright::x11qt
