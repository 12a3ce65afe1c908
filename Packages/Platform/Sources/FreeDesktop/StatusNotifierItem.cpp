#include "StatusNotifierItem.h"

#include "MessageBus.h"
#include "StatusNotifierPixmap.h"

#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <utility>

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
    void Activate(int x, int y) { item_->clicked({x, y}); }
    void SecondaryActivate(int x, int y) { item_->clicked({x, y}); }
    void ContextMenu(int x, int y) { item_->clicked({x, y}); }
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
    , adaptor_(nullptr)
    , watcher_(bus_, watcherService()) {
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

    bus_.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                 QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                 SLOT(busLost()));
    connect(&watcher_, &BusNameOwner::changed, this, &StatusNotifierItem::followWatcher);
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

void StatusNotifierItem::clicked(NativePixel place) {
    // Anybody on the bus may click. Clicks that wait together are one.
    if (std::exchange(lastClick_, place))
        return;
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT activated(*std::exchange(lastClick_, std::nullopt)); },
        Qt::QueuedConnection);
}

void StatusNotifierItem::followWatcher() {
    ++watcherGeneration_;
    isHostAskedFor_ = false;
    listenTo(watcher_.owner());
    if (heard_.isEmpty()) {
        settle(false);
        return;
    }
    QDBusMessage registerItem =
        callToWatcher(watcherService(), QStringLiteral("RegisterStatusNotifierItem"));
    registerItem << serviceName_;
    bus_.send(registerItem);
    askForHost();
}

void StatusNotifierItem::listenTo(const QString& watcher) {
    const QString came = QStringLiteral("StatusNotifierHostRegistered");
    const QString went = QStringLiteral("StatusNotifierHostUnregistered");
    const char* const slot = SLOT(hostsChanged(QDBusMessage));
    // The bus passes on nobody else's signals then, at no cost to this process.
    if (!heard_.isEmpty()) {
        bus_.disconnect(heard_, watcherPath(), watcherService(), came, this, slot);
        bus_.disconnect(heard_, watcherPath(), watcherService(), went, this, slot);
    }
    heard_ = watcher;
    if (!heard_.isEmpty()) {
        bus_.connect(heard_, watcherPath(), watcherService(), came, this, slot);
        bus_.connect(heard_, watcherPath(), watcherService(), went, this, slot);
    }
}

void StatusNotifierItem::askForHost() {
    isHostAskedFor_ = true;
    isAnswerStale_ = false;
    QDBusMessage get =
        callToWatcher(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << watcherService() << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(get), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, generation = watcherGeneration_](QDBusPendingCallWatcher* call) {
                call->deleteLater();
                if (generation != watcherGeneration_)
                    return;
                isHostAskedFor_ = false;
                const QDBusPendingReply<QDBusVariant> reply = *call;
                // A watcher that cannot tell is taken for one that comes with its host.
                settle(!reply.isValid() || reply.value().variant().toBool());
                if (isAnswerStale_)
                    askForHost();
            });
}

void StatusNotifierItem::hostsChanged(const QDBusMessage& notice) {
    if (notice.service() != heard_)
        return;
    // What the watcher says is asked for, once at a time: one host of several may have gone.
    if (isHostAskedFor_)
        isAnswerStale_ = true;
    else
        askForHost();
}

void StatusNotifierItem::busLost() {
    ++watcherGeneration_;
    settle(false);
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
