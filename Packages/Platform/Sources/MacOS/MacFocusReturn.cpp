#include "MacFocusReturn.h"

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>

namespace tilewright {

MacFocusReturn::MacFocusReturn(MainLoop& loop, MacWorkspace& workspace)
    : loop_(loop)
    , workspace_(workspace) {
    QObject::connect(qGuiApp, &QGuiApplication::lastWindowClosed, &context_,
                     [this] { windowClosed(); });
}

void MacFocusReturn::windowClosed() {
    loop_.post(life_.guard([this] {
        const QWindowList windows = QGuiApplication::topLevelWindows();
        const auto isVisible = [](const QWindow* window) { return window->isVisible(); };
        if (std::none_of(windows.begin(), windows.end(), isVisible))
            workspace_.returnToFormerApplication();
    }));
}

} // namespace tilewright
