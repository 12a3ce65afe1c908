#include "X11Trust.h"

#include "X11EventMonitors.h"

#include <FreeDesktop/FreeDesktopGuidance.h>

#include <QPointer>
#include <utility>

namespace tilewright {
namespace {
/// How long a window manager may take to appear at login.
constexpr std::chrono::seconds loginPatience{10};
} // namespace

X11Trust::X11Trust(X11Connection& connection, X11WindowManagerWatch& windowManager, MainLoop& loop,
                   UserNotifications& notifications, bool isWaylandSession)
    : connection_(connection)
    , windowManager_(windowManager)
    , loop_(loop)
    , notifications_(notifications)
    , isWaylandSession_(isWaylandSession)
    , wasTrusted_(isTrusted()) {
    connect(&windowManager_, &X11WindowManagerWatch::changed, this,
            &X11Trust::windowManagerChanged);
}

X11Trust::Lack X11Trust::lack() const {
    if (isWaylandSession_)
        return Lack::x11Session;
    if (!connection_.isAlive())
        return Lack::connection;
    if (!X11EventMonitors::isSupported(connection_))
        return Lack::inputEvents;
    if (!windowManager_.isRunning())
        return Lack::windowManager;
    if (!windowManager_.supports(X11Atom::netActiveWindow))
        return Lack::windowManagerSupport;
    return Lack::nothing;
}

QString X11Trust::explanation(Lack lack) {
    switch (lack) {
    case Lack::nothing:
        return {};
    case Lack::x11Session:
        return FreeDesktopGuidance::sessionsThatHelp();
    case Lack::connection:
        return tr("The X server does not answer.");
    case Lack::inputEvents:
        return tr("The X server does not offer input events of version 2.1 or later.");
    case Lack::windowManager:
        return tr("No window manager is running that follows the extended window manager hints.");
    case Lack::windowManagerSupport:
        return tr("The running window manager does not let other programs move windows.");
    }
    return {};
}

bool X11Trust::request() {
    const Lack missing = lack();
    if (missing == Lack::nothing)
        return true;
    if (wait_.isActive())
        return false;
    if (missing != Lack::windowManager || std::exchange(hasWaited_, true)) {
        tell();
        return false;
    }
    wait_ = ScopedTimer(loop_.scheduleOnce(loginPatience, [this] {
        if (!isTrusted())
            tell();
    }));
    return false;
}

void X11Trust::windowManagerChanged() {
    const bool trusted = isTrusted();
    // It may still be telling what it supports: what is missing then is judged at the deadline.
    if (trusted)
        wait_.reset();
    if (std::exchange(wasTrusted_, trusted) != trusted)
        Q_EMIT changed();
}

void X11Trust::tell() {
    // The message may stay longer than this.
    notifications_.show(tr("Tilewright cannot move windows"), explanation(lack()),
                        [self = QPointer(this)] {
                            if (self)
                                Q_EMIT self->guidanceWanted();
                        });
}

} // namespace tilewright
