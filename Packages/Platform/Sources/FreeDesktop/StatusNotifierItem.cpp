#include "StatusNotifierItem.h"

#include "StatusNotifierPixmap.h"

#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

namespace tilewright {

namespace {

QString watcherService() {
    return QStringLiteral("org.kde.StatusNotifierWatcher");
}

QString watcherPath() {
    return QStringLiteral("/StatusNotifierWatcher");
}

QString itemPath() {
    return QStringLiteral("/StatusNotifierItem");
}

QDBusMessage callToBus(const QString& method) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"), method);
}

QDBusMessage callToWatcher(const QString& interface, const QString& method) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(watcherService(), watcherPath(), interface, method);
    // The desktop decides whether it has a status area.
    call.setAutoStartService(false);
    return call;
}

} // namespace

/// What hosts see of the item. The operations' names are the protocol's.
class StatusNotifierItem::Adaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(tilewright::StatusNotifierPixmaps IconPixmap READ iconPixmap)
    Q_PROPERTY(tilewright::StatusNotifierToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)

public:
    explicit Adaptor(StatusNotifierItem* item)
        : QDBusAbstractAdaptor(item)
        , item_(item) {}

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("tilewright"); }
    QString title() const { return title_; }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString iconName() const { return iconName_; }
    StatusNotifierPixmaps iconPixmap() const { return iconPixmaps_; }
    StatusNotifierToolTip toolTip() const { return {QString(), {}, title_, QString()}; }
    bool itemIsMenu() const { return false; }

    void setTitle(const QString& title) {
        title_ = title;
        Q_EMIT NewTitle();
        Q_EMIT NewToolTip();
    }
    void setIcon(const QString& name, StatusNotifierPixmaps pixmaps) {
        iconName_ = name;
        iconPixmaps_ = std::move(pixmaps);
        Q_EMIT NewIcon();
    }

public Q_SLOTS:
    void Activate(int x, int y) { Q_EMIT item_->activated(NativePixel{x, y}); }
    void SecondaryActivate(int x, int y) { Q_EMIT item_->activated(NativePixel{x, y}); }
    void ContextMenu(int x, int y) { Q_EMIT item_->activated(NativePixel{x, y}); }
    void Scroll(int /*delta*/, const QString& /*orientation*/) {}

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString& status);

private:
    StatusNotifierItem* item_;
    QString title_;
    QString iconName_;
    StatusNotifierPixmaps iconPixmaps_;
};

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, int number)
    : bus_(std::move(bus))
    , serviceName_(QStringLiteral("org.kde.StatusNotifierItem-%1-%2")
                       .arg(QCoreApplication::applicationPid())
                       .arg(number))
    , adaptor_(nullptr) {
    registerStatusNotifierTypes();
    adaptor_ = new Adaptor(this);
    if (!bus_.isConnected()) {
        isSettled_ = true;
        return;
    }
    bus_.registerObject(itemPath(), this, QDBusConnection::ExportAdaptors);
    QDBusMessage requestName = callToBus(QStringLiteral("RequestName"));
    requestName << serviceName_ << quint32{0};
    bus_.asyncCall(requestName);

    auto* watch = new QDBusServiceWatcher(watcherService(), bus_,
                                          QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watch, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) {
                if (newOwner.isEmpty())
                    watcherVanished();
                else
                    watcherAppeared(newOwner);
            });
    const QString watcher = watcherService();
    // Any sender: naming one would look up its owner, blocking. Whose they are is judged here.
    bus_.connect(QString(), watcherPath(), watcher, QStringLiteral("StatusNotifierHostRegistered"),
                 this, SLOT(hostRegistered(QDBusMessage)));
    bus_.connect(QString(), watcherPath(), watcher,
                 QStringLiteral("StatusNotifierHostUnregistered"), this,
                 SLOT(hostUnregistered(QDBusMessage)));
    bus_.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                 QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                 SLOT(busLost()));

    QDBusMessage getOwner = callToBus(QStringLiteral("GetNameOwner"));
    getOwner << watcher;
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(getOwner), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, generation = watcherGeneration_](QDBusPendingCallWatcher* call) {
                call->deleteLater();
                if (generation != watcherGeneration_)
                    return;
                const QDBusPendingReply<QString> reply = *call;
                if (reply.isValid())
                    watcherAppeared(reply.value());
                else
                    settle(false);
            });
}

StatusNotifierItem::~StatusNotifierItem() {
    if (!bus_.isConnected())
        return;
    bus_.unregisterObject(itemPath());
    // Hosts drop an item when its name goes.
    QDBusMessage releaseName = callToBus(QStringLiteral("ReleaseName"));
    releaseName << serviceName_;
    bus_.send(releaseName);
}

void StatusNotifierItem::setIcon(const QString& themeName, const QIcon& icon) {
    adaptor_->setIcon(themeName, statusNotifierPixmaps(icon, toneForAnyBar()));
}

void StatusNotifierItem::setTitle(const QString& title) {
    adaptor_->setTitle(title);
}

void StatusNotifierItem::watcherAppeared(const QString& owner) {
    ++watcherGeneration_;
    watcher_ = owner;
    QDBusMessage registerItem =
        callToWatcher(watcherService(), QStringLiteral("RegisterStatusNotifierItem"));
    registerItem << serviceName_;
    bus_.asyncCall(registerItem);
    askForHost();
}

void StatusNotifierItem::watcherVanished() {
    ++watcherGeneration_;
    watcher_.clear();
    settle(false);
}

void StatusNotifierItem::askForHost() {
    QDBusMessage get =
        callToWatcher(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << watcherService() << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(get), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, generation = watcherGeneration_](QDBusPendingCallWatcher* call) {
                call->deleteLater();
                if (generation != watcherGeneration_)
                    return;
                const QDBusPendingReply<QDBusVariant> reply = *call;
                // A watcher that cannot tell is taken for one that comes with its host.
                settle(!reply.isValid() || reply.value().variant().toBool());
            });
}

void StatusNotifierItem::hostRegistered(const QDBusMessage& notice) {
    if (notice.service() == watcher_)
        settle(true);
}

void StatusNotifierItem::hostUnregistered(const QDBusMessage& notice) {
    // Another host may remain.
    if (notice.service() == watcher_)
        askForHost();
}

void StatusNotifierItem::busLost() {
    watcherVanished();
}

void StatusNotifierItem::settle(bool isHosted) {
    if (isSettled_ && isHosted_ == isHosted)
        return;
    isSettled_ = true;
    isHosted_ = isHosted;
    Q_EMIT hostedChanged();
}

} // namespace tilewright

#include "StatusNotifierItem.moc"
