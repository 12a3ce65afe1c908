#pragma once

#include "X11WindowManagerWatch.h"

#include <FreeDesktop/UserNotifications.h>
#include <Platform/MainLoop.h>

#include <QString>

namespace tilewright {

/// Whether this desktop offers what is needed to move other applications' windows and to watch
/// their input, and telling the user where it does not. Main thread only.
class X11Trust final : public QObject {
    Q_OBJECT

public:
    /// What is missing.
    enum class Lack {
        nothing,
        /// The session's own windows are out of the X server's reach.
        x11Session,
        connection,
        /// The X server lacks raw input events or keyboard state events.
        inputEvents,
        windowManager,
        /// The window manager moves no windows at others' request.
        windowManagerSupport,
    };

    X11Trust(X11Connection& connection, X11WindowManagerWatch& windowManager, MainLoop& loop,
             UserNotifications& notifications, bool isWaylandSession);

    [[nodiscard]] bool isTrusted() const { return lack() == Lack::nothing; }
    [[nodiscard]] Lack lack() const;
    /// A sentence for the user; empty where nothing is missing.
    [[nodiscard]] static QString explanation(Lack lack);
    /// Answers `isTrusted()`; where the answer is no, tells the user, each time that it is asked. A
    /// window manager that is merely not there yet is waited for first, 10 s at most, once in a
    /// run; what is asked meanwhile waits with it.
    bool request();

Q_SIGNALS:
    /// `isTrusted()` has another answer than before.
    void changed();
    /// The user wants to know more of what is missing.
    void guidanceWanted();

private:
    void tell();
    void windowManagerChanged();

    X11Connection& connection_;
    X11WindowManagerWatch& windowManager_;
    MainLoop& loop_;
    UserNotifications& notifications_;
    const bool isWaylandSession_;
    bool wasTrusted_;
    /// Whether the one wait of this run has begun, however it ended.
    bool hasWaited_ = false;
    ScopedTimer wait_;
};

} // namespace tilewright
