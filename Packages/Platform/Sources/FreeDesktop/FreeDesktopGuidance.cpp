#include "FreeDesktopGuidance.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace tilewright {

namespace {

/// The program in which a desktop's users choose their window manager; empty where it has none.
QString windowManagerSettings(const QStringList& desktops) {
    if (desktops.contains(QStringLiteral("LXQt")))
        return QStringLiteral("lxqt-config-session");
    if (desktops.contains(QStringLiteral("LXDE")))
        return QStringLiteral("lxsession-default-apps");
    return {};
}

} // namespace

QStringList FreeDesktopGuidance::installedPageFolders() {
    const QString folder = QStringLiteral("tilewright/help");
    const QStringList ownPrefix{
        QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/")) +
        u'/' + folder};
    return ownPrefix + QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, folder,
                                                 QStandardPaths::LocateDirectory);
}

FreeDesktopGuidance::FreeDesktopGuidance(UserNotifications& notifications,
                                         const QProcessEnvironment& environment,
                                         QStringList pageFolders, DetachedProcess::Clock clock)
    : notifications_(notifications)
    , environment_(environment)
    , pageFolders_(std::move(pageFolders))
    , clock_(std::move(clock)) {}

FreeDesktopGuidance::~FreeDesktopGuidance() = default;

void FreeDesktopGuidance::show(const Topic& topic) {
    tryInTurn(commandsFor(topic), [this, topic] { notifications_.show(topic.title, topic.text); });
}

void FreeDesktopGuidance::addIfInstalled(std::vector<Command>& commands, const QString& program,
                                         const QStringList& arguments) const {
    const QStringList folders =
        environment_.value(QStringLiteral("PATH")).split(u':', Qt::SkipEmptyParts);
    // An empty list would mean this process's own folders.
    if (folders.isEmpty())
        return;
    const QString path = QStandardPaths::findExecutable(program, folders);
    if (!path.isEmpty())
        commands.push_back(Command{path} + arguments);
}

std::vector<FreeDesktopGuidance::Command>
FreeDesktopGuidance::commandsFor(const Topic& topic) const {
    std::vector<Command> commands;
    if (topic.setting == Setting::windowManager) {
        const QString settings = windowManagerSettings(
            environment_.value(QStringLiteral("XDG_CURRENT_DESKTOP")).split(u':'));
        if (!settings.isEmpty())
            addIfInstalled(commands, settings, {});
    }
    for (const QString& folder : pageFolders_) {
        const QString page = folder + u'/' + topic.page;
        if (topic.page.isEmpty() || !QFileInfo(page).isFile())
            continue;
        addIfInstalled(commands, QStringLiteral("xdg-open"), {page});
        addIfInstalled(commands, QStringLiteral("gio"), {QStringLiteral("open"), page});
        addIfInstalled(commands, QStringLiteral("exo-open"), {page});
        break;
    }
    return commands;
}

void FreeDesktopGuidance::tryInTurn(std::vector<Command> commands,
                                    const std::function<void()>& whenNoneIsLeft) {
    if (commands.empty()) {
        whenNoneIsLeft();
        return;
    }
    const Command command = commands.front();
    commands.erase(commands.begin());
    auto* process = new DetachedProcess(clock_, this);
    process->handOver(
        command.first(), command.mid(1), environment_,
        [this, process, rest = std::move(commands), whenNoneIsLeft] {
            process->deleteLater();
            tryInTurn(rest, whenNoneIsLeft);
        },
        [process] { process->deleteLater(); });
}

} // namespace tilewright
