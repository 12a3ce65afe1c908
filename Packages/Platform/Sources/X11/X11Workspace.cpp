#include "X11Workspace.h"

#include "X11Properties.h"
#include "X11WindowFacts.h"

#include <QFile>
#include <QGuiApplication>
#include <QWindow>

namespace tilewright {

X11Workspace::X11Workspace(X11Connection& connection, X11ActiveWindow& activeWindow,
                           FreeDesktopGuidance& guidance)
    : connection_(connection)
    , activeWindow_(activeWindow)
    , guidance_(guidance) {
    activeWindow_.onChange([this] { Q_EMIT activeWindowChanged(); });
}

std::optional<ProcessID> X11Workspace::frontmostApplication() const {
    const auto window = activeWindow_.lastActive();
    if (!window)
        return std::nullopt;
    const X11WindowFacts facts = readWindowFacts(connection_, *window);
    return facts.processID == 0 ? std::nullopt : std::optional<ProcessID>(facts.processID);
}

std::optional<QString> X11Workspace::localizedName(ProcessID process) const {
    QFile file(QStringLiteral("/proc/%1/comm").arg(process));
    if (process <= 0 || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    if (const auto window = activeWindow_.lastActiveOf(process)) {
        // Two texts, each ended by a zero: the instance, then the application's name.
        const QByteArray names =
            takeBytes(connection_, requestProperty(connection_, *window, X11Atom::wmClass));
        const QList<QByteArray> parts = names.split('\0');
        if (parts.size() >= 2 && !parts[1].isEmpty())
            return QString::fromLocal8Bit(parts[1]);
    }
    const QString name = QString::fromLocal8Bit(file.readAll().trimmed());
    return name.isEmpty() ? std::nullopt : std::optional<QString>(name);
}

void X11Workspace::openAccessibilitySettings() {
    guidance_.show();
}

void X11Workspace::showDesktopOf(xcb_window_t window) {
    const auto currentCookie =
        requestProperty(connection_, connection_.root(), X11Atom::netCurrentDesktop, 1);
    const auto windowCookie = requestProperty(connection_, window, X11Atom::netWmDesktop, 1);
    const auto current = takeItems(connection_, currentCookie);
    const auto wanted = takeItems(connection_, windowCookie);
    constexpr std::uint32_t everyDesktop = 0xffffffff;
    if (current.empty() || wanted.empty() || wanted[0] == current[0] || wanted[0] == everyDesktop)
        return;
    // Some window managers only mark a window of another desktop as one that wants attention.
    sendToWindowManager(connection_, connection_.root(), X11Atom::netCurrentDesktop,
                        {wanted[0], XCB_CURRENT_TIME, 0, 0, 0});
}

void X11Workspace::activateThisApplication() {
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (auto it = windows.crbegin(); it != windows.crend(); ++it) {
        QWindow* window = *it;
        const bool isOrdinary = window->type() == Qt::Window || window->type() == Qt::Dialog;
        // What the window manager does not manage, such as Qt's tray icon, is no window
        // that it could bring forward.
        if (!window->isVisible() || !isOrdinary ||
            (window->flags() & (Qt::WindowDoesNotAcceptFocus | Qt::BypassWindowManagerHint)))
            continue;
        bringForward(*window);
        return;
    }
}

void X11Workspace::bringForward(QWindow& window) {
    const auto native = static_cast<xcb_window_t>(window.winId());
    showDesktopOf(native);
    window.raise();
    // As pagers ask: Qt's own request is refused where the user's last input went to
    // another application.
    constexpr std::uint32_t sourceIsUser = 2;
    sendToWindowManager(connection_, native, X11Atom::netActiveWindow,
                        {sourceIsUser, XCB_CURRENT_TIME, XCB_NONE, 0, 0});
    connection_.flush();
}

} // namespace tilewright
