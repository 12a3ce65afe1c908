#pragma once

#include "StatusNotifierItem.h"

#include <Platform/StatusItem.h>

#include <QDBusConnection>
#include <QIcon>
#include <map>
#include <memory>

class QSystemTrayIcon;

namespace tilewright {

/// The status item of a Linux desktop: a status-notifier item wherever a host shows such items, and
/// the X11 system tray where none does, for as long as none does.
class FreeDesktopStatusItem final : public StatusItem {
    Q_OBJECT

public:
    explicit FreeDesktopStatusItem(QDBusConnection bus = QDBusConnection::sessionBus());
    ~FreeDesktopStatusItem() override;

    void setSymbol(const QString& symbolName, const QIcon& icon) override;
    void setAccessibleName(const QString& name) override;

    /// Whether the item is offered to the X11 system tray now.
    [[nodiscard]] bool isInSystemTray() const { return systemTray_ != nullptr; }

private:
    void chooseHost();
    [[nodiscard]] QRect systemTrayPlace() const;
    [[nodiscard]] const QIcon& systemTrayIcon();

    StatusNotifierItem notifierItem_;
    std::unique_ptr<QSystemTrayIcon> systemTray_;
    QIcon icon_;
    QString symbolName_;
    QString name_;
    /// One for each symbol: the toolkit keeps what it has drawn of an icon, and would keep as much
    /// again of another one with the same look.
    std::map<QString, QIcon> systemTrayIcons_;
};

} // namespace tilewright
