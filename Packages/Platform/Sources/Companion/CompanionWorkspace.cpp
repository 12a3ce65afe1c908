#include "CompanionWorkspace.h"

#include <QFile>
#include <QGuiApplication>
#include <QWindow>

namespace tilewright {

CompanionWorkspace::CompanionWorkspace(CompanionState& state, CompanionOutbox& outbox,
                                       std::function<void()> showGuidance)
    : state_(state)
    , outbox_(outbox)
    , showGuidance_(std::move(showGuidance)) {
    connect(&state_, &CompanionState::focusChanged, this, &Workspace::activeWindowChanged);
}

CompanionWorkspace::~CompanionWorkspace() = default;

std::optional<ProcessID> CompanionWorkspace::frontmostApplication() const {
    const auto window = state_.lastActive();
    return window && window->process != 0 ? std::optional(window->process) : std::nullopt;
}

std::optional<QString> CompanionWorkspace::localizedName(ProcessID process) const {
    QFile file(QStringLiteral("/proc/%1/comm").arg(process));
    if (process <= 0 || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QString name = QString::fromLocal8Bit(file.readAll().trimmed());
    return name.isEmpty() ? std::nullopt : std::optional<QString>(name);
}

void CompanionWorkspace::activateThisApplication() {
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (auto it = windows.crbegin(); it != windows.crend(); ++it) {
        QWindow* window = *it;
        const bool isOrdinary = (window->type() == Qt::Window || window->type() == Qt::Dialog) &&
                                !window->flags().testFlag(Qt::FramelessWindowHint);
        if (!window->isVisible() || !isOrdinary)
            continue;
        bringForward(*window);
        return;
    }
}

void CompanionWorkspace::bringForward(QWindow& window) {
    window.raise();
    window.requestActivate();
    if (state_.isConnected())
        outbox_.bringForward(window.title());
}

} // namespace tilewright
