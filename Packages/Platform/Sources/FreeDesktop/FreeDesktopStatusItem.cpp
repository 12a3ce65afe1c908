#include "FreeDesktopStatusItem.h"

#include "StatusNotifierPixmap.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <QSystemTrayIcon>
#include <array>

namespace tilewright {

namespace {

/// The installed theme icon for a symbol, which hosts draw in their own colours; empty where the
/// program runs without being installed.
QString themeIcon(const QString& symbolName) {
    const QString name =
        QStringLiteral("tilewright-%1-symbolic").arg(QString(symbolName).replace(u'.', u'-'));
    const QString path =
        QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                               QStringLiteral("icons/hicolor/symbolic/apps/%1.svg").arg(name));
    return path.isEmpty() ? QString() : name;
}

QIcon trayIcon(const QIcon& icon) {
    constexpr std::array sizes{16, 20, 22, 24, 28, 32, 36, 40, 44, 48, 64};
    QIcon tray;
    for (const int size : sizes)
        tray.addPixmap(QPixmap::fromImage(recoloured(icon, size, toneForAnyBar())));
    return tray;
}

/// The toolkit scales each screen about its own top-left corner.
QRect nativePixels(const QRect& rect) {
    const QScreen* screen = QGuiApplication::screenAt(rect.center());
    if (!screen)
        return {};
    const QPoint origin = screen->geometry().topLeft();
    const double scale = screen->devicePixelRatio();
    return {origin + (rect.topLeft() - origin) * scale, rect.size() * scale};
}

} // namespace

FreeDesktopStatusItem::FreeDesktopStatusItem(QDBusConnection bus)
    : notifierItem_(std::move(bus)) {
    connect(&notifierItem_, &StatusNotifierItem::activated, this,
            [this](QPoint place) { Q_EMIT activated(QRect(place, QSize(0, 0))); });
    connect(&notifierItem_, &StatusNotifierItem::hostedChanged, this,
            &FreeDesktopStatusItem::chooseHost);
}

FreeDesktopStatusItem::~FreeDesktopStatusItem() = default;

void FreeDesktopStatusItem::setSymbol(const QString& symbolName, const QIcon& icon) {
    icon_ = icon;
    symbolName_ = symbolName;
    notifierItem_.setIcon(themeIcon(symbolName), icon);
    if (systemTray_)
        systemTray_->setIcon(systemTrayIcon());
    else
        chooseHost();
}

void FreeDesktopStatusItem::setAccessibleName(const QString& name) {
    name_ = name;
    notifierItem_.setTitle(name);
    if (systemTray_)
        systemTray_->setToolTip(name);
}

void FreeDesktopStatusItem::chooseHost() {
    // The toolkit settles on the X11 tray for good when its first tray icon finds no notifier host,
    // which is the only moment at which one is made here.
    const bool wantsSystemTray =
        notifierItem_.isSettled() && !notifierItem_.isHosted() && !icon_.isNull();
    if (wantsSystemTray == isInSystemTray())
        return;
    if (!wantsSystemTray) {
        systemTray_.reset();
        return;
    }
    systemTray_ = std::make_unique<QSystemTrayIcon>();
    systemTray_->setIcon(systemTrayIcon());
    systemTray_->setToolTip(name_);
    connect(systemTray_.get(), &QSystemTrayIcon::activated, this,
            [this] { Q_EMIT activated(systemTrayPlace()); });
    systemTray_->show();
}

const QIcon& FreeDesktopStatusItem::systemTrayIcon() {
    QIcon& kept = systemTrayIcons_[symbolName_];
    if (kept.isNull())
        kept = trayIcon(icon_);
    return kept;
}

QRect FreeDesktopStatusItem::systemTrayPlace() const {
    return nativePixels(systemTray_->geometry());
}

} // namespace tilewright
