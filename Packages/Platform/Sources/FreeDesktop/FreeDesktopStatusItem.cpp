#include "FreeDesktopStatusItem.h"

#include "StatusNotifierPixmap.h"

#include <QDBusConnection>
#include <QLibraryInfo>
#include <QStandardPaths>
#include <QSystemTrayIcon>
#include <QVersionNumber>
#include <array>
#include <cmath>
#include <dlfcn.h>
#include <sys/socket.h>

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

/// How far an item reaches at most from the place that its host tells of it; in Qt's points.
constexpr double itemReach = 64;

QIcon trayIcon(const QIcon& icon) {
    constexpr std::array sizes{16, 20, 22, 24, 28, 32, 36, 40, 44, 48, 64};
    QIcon tray;
    for (const int size : sizes)
        tray.addPixmap(QPixmap::fromImage(recoloured(icon, size, iconColorForAnyBar())));
    return tray;
}

/// Whether Qt puts tray icons on the bus for a watcher that has no host: 6.4 asked for one, 6.8
/// does not.
bool isWatcherEnoughForQt() {
    return QLibraryInfo::version() >= QVersionNumber(6, 5);
}

/// Ends a connection for all who hold it, as when its bus dies; giving up its name would leave it
/// open to the others. Whether it is about to tell them.
bool end(const QDBusConnection& connection) {
    // The library that Qt has loaded by then, wherever it has it from.
    void* library = dlopen("libdbus-1.so.3", RTLD_LAZY | RTLD_NOLOAD);
    if (!library)
        return false;
    using GetSocket = unsigned int (*)(void* connection, int* socket);
    const auto getSocket =
        reinterpret_cast<GetSocket>(dlsym(library, "dbus_connection_get_unix_fd"));
    int socket = -1;
    const bool isEnding = getSocket && getSocket(connection.internalPointer(), &socket) != 0 &&
                          shutdown(socket, SHUT_RDWR) == 0;
    dlclose(library);
    return isEnding;
}

} // namespace

FreeDesktopStatusItem::FreeDesktopStatusItem(const Screens& screens, PixelPlace pixelPlace,
                                             MainLoop& loop, MessageBus& bus,
                                             const std::optional<Display>& display)
    : screens_(screens)
    , pixelPlace_(std::move(pixelPlace))
    , display_(display)
    // A display server that tells every program where the pointer is has no leave to give.
    , notifierItem_(loop, bus,
                    display ? StatusNotifierItem::ActivationToken::ignored
                            : StatusNotifierItem::ActivationToken::left) {
    connect(&notifierItem_, &StatusNotifierItem::activated, this,
            [this](NativePixel click) { Q_EMIT activated(notifierPlace(click)); });
    connect(&notifierItem_, &StatusNotifierItem::hostedChanged, this,
            &FreeDesktopStatusItem::chooseHost);
    if (display_)
        connect(&display_->systemTray, &SystemTray::changed, this,
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
    // Qt settles on the system tray for good when its first tray icon finds no notifier host, and
    // on the bus for good when it finds one. So none is made here before there is a tray to take
    // it: while a session starts a host may come at any moment. One that is made stays when the
    // tray goes: where the next has come already, Qt may have had it taken in there.
    const bool isTrayThere = display_ && display_->systemTray.isThere();
    const bool wantsSystemTray = (isTrayThere || isInSystemTray()) && notifierItem_.isSettled() &&
                                 !notifierItem_.isHosted() && !icon_.isNull();
    if (wantsSystemTray == isInSystemTray()) {
        if (isTrayThere && wantsSystemTray && systemTray_->geometry().isNull()) {
            // It has no window, and gets one where there is a tray to ask.
            systemTray_->hide();
            systemTray_->show();
        }
        return;
    }
    if (!wantsSystemTray) {
        systemTray_.reset();
        return;
    }
    const bool wouldQtTakeTheBus = notifierItem_.trust() == StatusNotifierItem::Trust::none ||
                                   (isWatcherEnoughForQt() && notifierItem_.hasWatcher());
    if (wouldQtTakeTheBus && endBusOfQt())
        return;
    systemTray_ = std::make_unique<QSystemTrayIcon>();
    systemTray_->setIcon(systemTrayIcon());
    systemTray_->setToolTip(name_);
    connect(systemTray_.get(), &QSystemTrayIcon::activated, this,
            [this] { Q_EMIT activated(systemTrayPlace()); });
    systemTray_->show();
}

bool FreeDesktopStatusItem::endBusOfQt() {
    // Qt asks for the watcher, and older ones for its host, too before it makes its first tray
    // icon, and believes whatever they are told, or waits for 25 s. It leaves that out where its
    // bus is gone.
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return false;
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                SLOT(busOfQtEnded()));
    return end(bus);
}

void FreeDesktopStatusItem::busOfQtEnded() {
    chooseHost();
}

const QIcon& FreeDesktopStatusItem::systemTrayIcon() {
    QIcon& kept = systemTrayIcons_[symbolName_];
    if (kept.isNull())
        kept = trayIcon(icon_);
    return kept;
}

std::optional<AppKitRect> FreeDesktopStatusItem::notifierPlace(NativePixel click) const {
    if (click == NativePixel{})
        return std::nullopt;
    AppKitPoint at = pixelPlace_(click);
    if (!isBelievable(at))
        at = display_->pointer.location();
    return AppKitRect{at.x, at.y, 0, 0};
}

bool FreeDesktopStatusItem::isBelievable(AppKitPoint told) const {
    if (!display_)
        return true;
    // Some bars tell of every click that it was in their own corner. One by the keyboard may well
    // be far from the pointer, which is on no bar then.
    const AppKitPoint pointer = display_->pointer.location();
    const ScreenPtr screen = screens_.at(pointer);
    if (!screen || screen->visibleFrame().contains(pointer))
        return true;
    const double point = screens_.qtSpace(*screen).toAppKit({0, 0, 1, 1}).width;
    return std::hypot(told.x - pointer.x, told.y - pointer.y) <= itemReach * point;
}

std::optional<AppKitRect> FreeDesktopStatusItem::systemTrayPlace() const {
    const QtRect told = QtRect::of(systemTray_->geometry());
    for (const ScreenPtr& screen : screens_.all()) {
        const AppKitRect place = screens_.qtSpace(*screen).toAppKit(told);
        if (!place.isEmpty() && screen->frame().contains(place.center()))
            return place;
    }
    return std::nullopt;
}

} // namespace tilewright
