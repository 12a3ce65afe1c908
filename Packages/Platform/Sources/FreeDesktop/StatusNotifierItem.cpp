#include "StatusNotifierItem.h"

#include "StatusNotifierPixmap.h"

#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusError>
#include <QDBusMessage>
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
    void ProvideXdgActivationToken(const QString& token) { item_->keepActivationToken(token); }
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

StatusNotifierItem::StatusNotifierItem(MainLoop& loop, MessageBus& bus,
                                       ActivationToken activationToken, int number)
    : loop_(loop)
    , bus_(bus)
    , activationToken_(activationToken)
    , serviceName_(QStringLiteral("org.kde.StatusNotifierItem-%1-%2")
                       .arg(QCoreApplication::applicationPid())
                       .arg(number))
    , adaptor_(nullptr)
    , signals_(bus, watcherPath(), watcherService(),
               {QStringLiteral("StatusNotifierHostRegistered"),
                QStringLiteral("StatusNotifierHostUnregistered")}) {
    registerStatusNotifierTypes();
    adaptor_ = new Adaptor(this);
    connect(&signals_, &BusSignals::heard, this, &StatusNotifierItem::hostsChanged);
    connect(&bus_, &MessageBus::joined, this, &StatusNotifierItem::joinBus);
    connect(&bus_, &MessageBus::left, this, &StatusNotifierItem::leaveBus);
    if (bus_.isJoined())
        joinBus();
    else if (bus_.isAbsent())
        isSettled_ = true;
    else
        limitWaiting();
}

StatusNotifierItem::~StatusNotifierItem() {
    if (!bus_.isJoined())
        return;
    QDBusConnection bus = bus_.connection();
    bus.unregisterObject(itemPath());
    // Hosts drop an item when its name goes.
    QDBusMessage releaseName = callToBus(QStringLiteral("ReleaseName"));
    releaseName << serviceName_;
    bus.send(releaseName);
}

void StatusNotifierItem::joinBus() {
    leaveWatcher();
    QDBusConnection bus = bus_.connection();
    bus.registerObject(itemPath(), this, QDBusConnection::ExportAdaptors);
    QDBusMessage requestName = callToBus(QStringLiteral("RequestName"));
    requestName << serviceName_ << quint32{0};
    bus.send(requestName);
    watcher_ = std::make_unique<BusNameOwner>(bus, watcherService());
    connect(watcher_.get(), &BusNameOwner::changed, this, &StatusNotifierItem::followWatcher);
    limitWaiting();
}

void StatusNotifierItem::leaveBus() {
    leaveWatcher();
    settle(false, Trust::full);
}

void StatusNotifierItem::leaveWatcher() {
    ++watcherGeneration_;
    isHostAskedFor_ = false;
    signals_.listenTo({});
    watcher_.reset();
}

void StatusNotifierItem::setIcon(const QString& themeName, const QIcon& icon) {
    adaptor_->setIcon(themeName, statusNotifierPixmaps(icon, iconColorForAnyBar()));
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

void StatusNotifierItem::keepActivationToken(const QString& token) const {
    // Only the compositor knows a real one; what is no token at all is not kept.
    constexpr qsizetype longest = 256;
    if (activationToken_ == ActivationToken::left && token.size() <= longest)
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

void StatusNotifierItem::followWatcher() {
    ++watcherGeneration_;
    isHostAskedFor_ = false;
    signals_.listenTo(watcher_->owner());
    if (!hasWatcher()) {
        settle(false, Trust::full);
        return;
    }
    registerItem();
    askForHost();
}

void StatusNotifierItem::registerItem() {
    QDBusMessage call =
        callToWatcher(watcherService(), QStringLiteral("RegisterStatusNotifierItem"));
    call << serviceName_;
    bus_.connection().send(call);
}

void StatusNotifierItem::askForHost() {
    isHostAskedFor_ = true;
    isAnswerStale_ = false;
    limitWaiting();
    QDBusMessage get =
        callToWatcher(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << watcherService() << QStringLiteral("IsStatusNotifierHostRegistered");
    whenAnswered(bus_.connection().asyncCall(get), this,
                 [this, generation = watcherGeneration_](const QDBusMessage& answer) {
                     if (generation != watcherGeneration_)
                         return;
                     isHostAskedFor_ = false;
                     takeWord(answer);
                     if (isAnswerStale_)
                         askForHost();
                 });
}

void StatusNotifierItem::takeWord(const QDBusMessage& reply) {
    const QVariant told = reply.arguments().value(0).value<QDBusVariant>().variant();
    const bool isError = reply.type() == QDBusMessage::ErrorMessage;
    const QDBusError::ErrorType error = QDBusError(reply).type();
    isWatcherHollow_ = error == QDBusError::UnknownObject;
    if (isWatcherHollow_)
        // As of Plasma's daemon of services in a session of another desktop.
        settle(false, Trust::full);
    else if (isError && error != QDBusError::NoReply)
        // A watcher that cannot tell is taken for one that comes with its host.
        settle(true, Trust::full);
    else if (isError || told.metaType() != QMetaType::fromType<bool>())
        settle(false, Trust::none);
    else
        settle(told.toBool(), Trust::full);
}

void StatusNotifierItem::limitWaiting() {
    patience_ =
        ScopedTimer(loop_.scheduleOnce(answerBound, [this] { settle(false, Trust::none); }));
}

void StatusNotifierItem::hostsChanged() {
    if (std::exchange(isWatcherHollow_, false))
        registerItem();
    // What the watcher says is asked for, once at a time: one host of several may have gone.
    if (isHostAskedFor_)
        isAnswerStale_ = true;
    else
        askForHost();
}

void StatusNotifierItem::settle(bool isHosted, Trust trust) {
    patience_.reset();
    trust_ = trust;
    if (isSettled_ && isHosted_ == isHosted)
        return;
    isSettled_ = true;
    isHosted_ = isHosted;
    Q_EMIT hostedChanged();
}

} // namespace tilewright

#include "StatusNotifierItem.moc"
