#include "DesktopChoice.h"

namespace tilewright {

DesktopChoice chooseDesktop(const SessionFacts& facts) {
    using XServer = SessionFacts::XServer;
    // A compositor may run in a window of an X11 session, GNOME's as well as others.
    if (facts.xServer == XServer::independent &&
        !(facts.hasWaylandCompositor && facts.isCalledWayland))
        return DesktopChoice::x11;
    const bool canBeClient = facts.hasWaylandCompositor && facts.hasQtWayland;
    if (canBeClient && facts.hasGnomeShell)
        return DesktopChoice::gnome;
    if (canBeClient && facts.hasKWin)
        return DesktopChoice::plasma;
    if (facts.xServer != XServer::none)
        return DesktopChoice::x11BesideWayland;
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
