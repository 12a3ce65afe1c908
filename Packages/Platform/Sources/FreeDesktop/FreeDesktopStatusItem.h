#pragma once

#include "StatusNotifierItem.h"
#include "SystemTray.h"

#include <Platform/Pointer.h>
#include <Platform/Screens.h>
#include <Platform/StatusItem.h>

#include <QIcon>
#include <functional>
#include <map>
#include <memory>

class QSystemTrayIcon;

namespace tilewright {

/// The status item of a Linux desktop: a status-notifier item wherever a host shows such items, and
/// the system tray, if there is one, where none does, for as long as none does.
class FreeDesktopStatusItem final : public StatusItem {
    Q_OBJECT

public:
    /// Where the centre of a pixel is in AppKit screen space.
    using PixelPlace = std::function<AppKitPoint(NativePixel)>;

    /// What a display server lets every program know.
    struct Display {
        /// Where the pointer is, whichever window it is over.
        const Pointer& pointer;
        /// Where the item is shown while no host shows status-notifier items.
        const SystemTray& systemTray;
    };

    /// The screens, the loop and the bus have to outlive the item, and so does what the display
    /// consists of, where it tells anything.
    FreeDesktopStatusItem(const Screens& screens, PixelPlace pixelPlace, MainLoop& loop,
                          MessageBus& bus, const std::optional<Display>& display = std::nullopt);
    ~FreeDesktopStatusItem() override;

    void setSymbol(const QString& symbolName, const QIcon& icon) override;
    void setAccessibleName(const QString& name) override;

    /// Whether the item is offered to whatever system tray there is.
    [[nodiscard]] bool isInSystemTray() const { return systemTray_ != nullptr; }

private Q_SLOTS:
    void busOfQtEnded();

private:
    void chooseHost();
    /// Whether Qt's bus is about to end, and `busOfQtEnded` to be called.
    [[nodiscard]] bool endBusOfQt();
    [[nodiscard]] std::optional<AppKitRect> notifierPlace(NativePixel click) const;
    /// Whether an item that has just been clicked can be there.
    [[nodiscard]] bool isBelievable(AppKitPoint told) const;
    [[nodiscard]] std::optional<AppKitRect> systemTrayPlace() const;
    [[nodiscard]] const QIcon& systemTrayIcon();

    const Screens& screens_;
    PixelPlace pixelPlace_;
    const std::optional<Display> display_;
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
