#pragma once

#include "DetachedProcess.h"
#include "UserNotifications.h"

#include <QObject>
#include <QProcessEnvironment>
#include <QStringList>
#include <functional>
#include <vector>

namespace tilewright {

/// Shows the user the way to what a desktop lacks: the desktop's own settings where they have a
/// page that helps, else a page that is installed with this program, opened by whatever the desktop
/// opens documents with; a notification where nothing opens it. Main thread only.
class FreeDesktopGuidance final : public QObject {
    Q_OBJECT

public:
    /// A choice that some desktops offer in their settings.
    enum class Setting { none, windowManager };

    /// One thing that may be lacking.
    struct Topic {
        Setting setting = Setting::none;
        /// The file name of the page; empty where there is none.
        QString page;
        /// The notification.
        QString title;
        QString text;
    };

    /// Where the pages of the running program are, the first choice first: beside the program, then
    /// below the desktop's data folders.
    [[nodiscard]] static QStringList installedPageFolders();

    /// Programs are looked up in the environment's PATH and get this environment. The notifications
    /// have to outlive this. By the clock a program that cannot help is told from one that has.
    explicit FreeDesktopGuidance(
        UserNotifications& notifications,
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment(),
        QStringList pageFolders = installedPageFolders(),
        DetachedProcess::Clock clock = DetachedProcess::steadyTime);
    ~FreeDesktopGuidance() override;

    /// Returns at once. Programs that it starts live on after this object.
    void show(const Topic& topic);

private:
    /// The full path of a program, then its arguments.
    using Command = QStringList;

    void addIfInstalled(std::vector<Command>& commands, const QString& program,
                        const QStringList& arguments) const;
    [[nodiscard]] std::vector<Command> commandsFor(const Topic& topic) const;
    /// Runs the first command; where it fails, the next one.
    void tryInTurn(std::vector<Command> commands, const std::function<void()>& whenNoneIsLeft);

    UserNotifications& notifications_;
    const QProcessEnvironment environment_;
    const QStringList pageFolders_;
    const DetachedProcess::Clock clock_;
};

} // namespace tilewright
