#include "X11Guidance.h"

#include <QCoreApplication>

namespace tilewright {

namespace {

QString pageFor(X11Trust::Lack lack) {
    using Lack = X11Trust::Lack;
    switch (lack) {
    case Lack::x11Session:
        return QStringLiteral("x11-session.html");
    case Lack::inputEvents:
        return QStringLiteral("input-events.html");
    case Lack::windowManager:
        return QStringLiteral("window-manager.html");
    case Lack::windowManagerSupport:
        return QStringLiteral("window-manager-support.html");
    case Lack::nothing:
    case Lack::connection:
        break;
    }
    return {};
}

} // namespace

FreeDesktopGuidance::Topic guidanceFor(X11Trust::Lack lack) {
    using Lack = X11Trust::Lack;
    const bool anotherWindowManagerHelps =
        lack == Lack::windowManager || lack == Lack::windowManagerSupport;
    return {
        anotherWindowManagerHelps ? FreeDesktopGuidance::Setting::windowManager
                                  : FreeDesktopGuidance::Setting::none,
        pageFor(lack),
        QCoreApplication::translate("tilewright::X11Workspace", "Window control"),
        lack == Lack::nothing
            ? QCoreApplication::translate("tilewright::X11Workspace",
                                          "This desktop offers all that is needed to move windows.")
            : X11Trust::explanation(lack),
    };
}

} // namespace tilewright
