#pragma once

#include "StatusNotifierItem.h"

#include <Platform/Screens.h>
#include <Platform/StatusItem.h>

#include <QIcon>
#include <functional>
#include <map>
#include <memory>

class QSystemTrayIcon;

namespace tilewright {

/// The status item of a Linux desktop: a status-notifier item wherever a host shows such items, and
/// the X11 system tray, if there is one, where none does, for as long as none does.
class FreeDesktopStatusItem final : public StatusItem {
    Q_OBJECT

public:
    /// Where the centre of a pixel is in AppKit screen space.
    using PixelPlace = std::function<AppKitPoint(NativePixel)>;

    /// Where the item is shown while no host shows status-notifier items.
    enum class Otherwise { inSystemTray, nowhere };

    /// The screens, the loop and the bus have to outlive the item.
    FreeDesktopStatusItem(const Screens& screens, PixelPlace pixelPlace, MainLoop& loop,
                          MessageBus& bus, Otherwise otherwise = Otherwise::inSystemTray);
    ~FreeDesktopStatusItem() override;

    void setSymbol(const QString& symbolName, const QIcon& icon) override;
    void setAccessibleName(const QString& name) override;

    /// Whether the item is offered to the X11 system tray now.
    [[nodiscard]] bool isInSystemTray() const { return systemTray_ != nullptr; }

private Q_SLOTS:
    void busOfQtEnded();

private:
    void chooseHost();
    /// Whether Qt's bus is about to end, and `busOfQtEnded` to be called.
    [[nodiscard]] bool endBusOfQt();
    [[nodiscard]] std::optional<AppKitRect> notifierPlace(NativePixel click) const;
    [[nodiscard]] std::optional<AppKitRect> systemTrayPlace() const;
    [[nodiscard]] const QIcon& systemTrayIcon();

    const Screens& screens_;
    PixelPlace pixelPlace_;
    const Otherwise otherwise_;
    StatusNotifierItem notifierItem_;
    std::unique_ptr<QSystemTrayIcon> systemTray_;
    QIcon icon_;
    QString symbolName_;
    QString name_;
    /// One for each symbol: Qt keeps what it has drawn of an icon, and would keep as much
    /// again of another one with the same look.
    std::map<QString, QIcon> systemTrayIcons_;
};

} // namespace tilewright
