#include "DesktopChoice.h"

namespace tilewright {

DesktopChoice chooseDesktop(const SessionFacts& facts) {
    using XServer = SessionFacts::XServer;
    switch (facts.xServer) {
    case XServer::besideWayland:
        return DesktopChoice::x11BesideWayland;
    case XServer::independent:
        return facts.hasWaylandCompositor && facts.isCalledWayland ? DesktopChoice::x11BesideWayland
                                                                   : DesktopChoice::x11;
    case XServer::none:
        break;
    }
    return facts.hasWaylandCompositor ? DesktopChoice::wayland : DesktopChoice::none;
}

QString noDesktopMessage(const QString& xDisplay, const QString& waylandSocket) {
    const auto looked = [](const QString& what, const QString& where, const QString& variable) {
        return where.isEmpty()
                   ? what + QStringLiteral(" (") + variable + QStringLiteral(" names none)")
                   : what + QStringLiteral(" at ") + where;
    };
    return QStringLiteral("no desktop was found: neither ") +
           looked(QStringLiteral("an X server"), xDisplay, QStringLiteral("DISPLAY")) +
           QStringLiteral(" nor ") +
           looked(QStringLiteral("a Wayland compositor"), waylandSocket,
                  QStringLiteral("XDG_RUNTIME_DIR")) +
           QStringLiteral(" answers");
}

} // namespace tilewright
