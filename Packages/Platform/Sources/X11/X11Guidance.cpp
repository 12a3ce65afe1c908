#include "X11Guidance.h"

#include <QStandardPaths>

namespace tilewright {

X11Guidance::Step X11Guidance::stepFor(X11Trust::Lack lack, bool settings) {
    using Lack = X11Trust::Lack;
    const auto step = [lack](const QString& title, const QString& way, const QString& action = {}) {
        const QString explanation = X11Trust::explanation(lack);
        return Step{title, way.isEmpty() ? explanation : explanation + QStringLiteral("\n\n") + way,
                    action};
    };
    const QString openSettings = settings ? tr("Open Settings") : QString();
    switch (lack) {
    case Lack::nothing:
        return lastStep();
    case Lack::x11Session:
        return otherSessionStep();
    case Lack::connection:
        return step(tr("The X server is gone"), {});
    case Lack::inputEvents:
        return step(tr("Drags cannot be seen on this X server"),
                    tr("It lacks the input extension (XInput 2.1) or the keyboard extension (XKB), "
                       "as some servers for remote sessions do. Log in at the computer itself, or "
                       "use another server, or a newer one."));
    case Lack::windowManager:
        return step(tr("There is no window manager"),
                    tr("If it has crashed, start it again, or log out and in. Otherwise choose "
                       "another one in your desktop's session settings. Tilewright follows the "
                       "change by itself."),
                    openSettings);
    case Lack::windowManagerSupport:
        return step(tr("The window manager moves no windows for others"),
                    tr("Choose another one in your desktop's session settings. Tilewright follows "
                       "the change by itself."),
                    openSettings);
    }
    return lastStep();
}

QString X11Guidance::windowManagerSettings(const QProcessEnvironment& environment) {
    const QStringList desktops =
        environment.value(QStringLiteral("XDG_CURRENT_DESKTOP")).split(u':');
    const QStringList folders =
        environment.value(QStringLiteral("PATH")).split(u':', Qt::SkipEmptyParts);
    QString program;
    if (desktops.contains(QStringLiteral("LXQt")))
        program = QStringLiteral("lxqt-config-session");
    else if (desktops.contains(QStringLiteral("LXDE")))
        program = QStringLiteral("lxsession-default-apps");
    // An empty list would mean this process's own folders.
    if (program.isEmpty() || folders.isEmpty())
        return {};
    return QStandardPaths::findExecutable(program, folders);
}

X11Guidance::X11Guidance(X11Trust& trust, X11WindowManagerWatch& windowManager,
                         UserNotifications& notifications, BringForward bringForward,
                         const QProcessEnvironment& environment)
    : FreeDesktopGuidance(notifications, std::move(bringForward))
    , trust_(trust)
    , environment_(environment) {
    connect(&windowManager, &X11WindowManagerWatch::changed, this, &X11Guidance::update);
    connect(&trust, &X11Trust::guidanceWanted, this, &X11Guidance::show);
}

X11Guidance::~X11Guidance() = default;

X11Guidance::Step X11Guidance::step() const {
    return stepFor(trust_.lack(), !windowManagerSettings(environment_).isEmpty());
}

void X11Guidance::act() {
    const QString program = windowManagerSettings(environment_);
    if (program.isEmpty())
        return;
    auto* process = new DetachedProcess(DetachedProcess::steadyTime, this);
    const auto forget = [process] { process->deleteLater(); };
    process->handOver(program, {}, environment_, forget, forget);
}

} // namespace tilewright
