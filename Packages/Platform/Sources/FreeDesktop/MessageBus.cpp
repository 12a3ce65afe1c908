#include "MessageBus.h"

#include <QDBusPendingCallWatcher>
#include <QFileInfo>
#include <QFileSystemWatcher>

namespace tilewright {

namespace {

constexpr int retryCount = 5;
constexpr MainLoop::Interval firstRetryInterval{50};

/// Without the identity of one bus: another at the same place is as good.
QByteArray withoutIdentity(const QByteArray& addresses) {
    QList<QByteArray> kept;
    const QList<QByteArray> all = addresses.split(';');
    for (const QByteArray& address : all) {
        const qsizetype entriesFrom = address.indexOf(':') + 1;
        QList<QByteArray> entries = address.mid(entriesFrom).split(',');
        entries.removeIf([](const QByteArray& entry) { return entry.startsWith("guid="); });
        kept.append(address.left(entriesFrom) + entries.join(','));
    }
    return kept.join(';');
}

/// The folders where a socket of the addresses would be and where only this user, or the system,
/// could put one.
QStringList safeFolders(const QByteArray& addresses) {
    QStringList folders;
    const QList<QByteArray> paths = BusGreeting::socketPaths(addresses);
    for (const QByteArray& path : paths) {
        const QFileInfo folder(QFileInfo(QString::fromLocal8Bit(path)).path());
        if (!path.startsWith('\0') && folder.isDir() && !folder.permission(QFileDevice::WriteOther))
            folders.append(folder.filePath());
    }
    return folders;
}

QDBusConnection noConnection() {
    return QDBusConnection(QString());
}

} // namespace

QDBusMessage callToBus(const QString& method) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"), method);
}

QDBusPendingReply<QString> askForOwner(const QDBusConnection& bus, const QString& name) {
    QDBusMessage getOwner = callToBus(QStringLiteral("GetNameOwner"));
    getOwner << name;
    return bus.asyncCall(getOwner);
}

void whenAnswered(const QDBusPendingCall& call, QObject* receiver,
                  std::function<void(const QDBusMessage& answer)> then) {
    auto* pending = new QDBusPendingCallWatcher(call, receiver);
    QObject::connect(pending, &QDBusPendingCallWatcher::finished, receiver,
                     [then = std::move(then)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         then(finished->reply());
                     });
}

QByteArray MessageBus::addresses(Kind kind) {
    QByteArray told =
        qgetenv(kind == Kind::session ? "DBUS_SESSION_BUS_ADDRESS" : "DBUS_SYSTEM_BUS_ADDRESS");
    if (!told.isEmpty())
        return told;
    if (kind == Kind::system)
        return QByteArrayLiteral("unix:path=/run/dbus/system_bus_socket");
    const QByteArray socket = qgetenv("XDG_RUNTIME_DIR") + "/bus";
    return QFileInfo::exists(QString::fromLocal8Bit(socket))
               ? "unix:path=" + socket.toPercentEncoding(QByteArrayLiteral("/"))
               : QByteArray();
}

MessageBus::MessageBus(MainLoop& loop, Kind kind)
    : MessageBus(loop, addresses(kind)) {
    // What is started with the bus begins with it, where it works: a reply takes no millisecond.
    if (greeting_ && greeting_->wait(startBound) != BusGreeting::State::unanswered)
        heard();
}

MessageBus::MessageBus(MainLoop& loop, const QByteArray& addresses)
    : loop_(&loop)
    , addresses_(withoutIdentity(addresses))
    , connection_(noConnection()) {
    greet();
}

MessageBus::MessageBus(const QDBusConnection& connection)
    : connection_(noConnection()) {
    if (connection.isConnected())
        setConnection(connection);
    else
        isAbsent_ = true;
}

MessageBus::~MessageBus() {
    if (!name_.isEmpty())
        QDBusConnection::disconnectFromBus(name_);
}

void MessageBus::greet() {
    folders_.reset();
    reply_.reset();
    isAbsent_ = false;
    greeting_ = std::make_unique<BusGreeting>(addresses_);
    if (greeting_->look() != BusGreeting::State::unanswered) {
        heard();
        return;
    }
    reply_ = std::make_unique<QSocketNotifier>(greeting_->descriptor(), QSocketNotifier::Read);
    connect(reply_.get(), &QSocketNotifier::activated, this, [this] {
        if (greeting_->look() != BusGreeting::State::unanswered)
            heard();
    });
}

void MessageBus::heard() {
    const bool isAnswered = greeting_->look() == BusGreeting::State::answered;
    // It may be its own signal that this is called by.
    if (reply_) {
        reply_->setEnabled(false);
        reply_.release()->deleteLater();
    }
    greeting_.reset();
    if (isAnswered)
        join();
    else
        awaitAnother();
}

void MessageBus::join() {
    static int count = 0;
    if (!name_.isEmpty())
        QDBusConnection::disconnectFromBus(name_);
    name_ = QStringLiteral("tilewright-%1").arg(++count);
    const auto opened =
        addresses_.isEmpty()
            ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, name_)
            : QDBusConnection::connectToBus(QString::fromLocal8Bit(addresses_), name_);
    if (opened.isConnected())
        setConnection(opened);
    else
        awaitAnother();
}

void MessageBus::setConnection(const QDBusConnection& connection) {
    connection_ = connection;
    connection_.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                        QStringLiteral("org.freedesktop.DBus.Local"),
                        QStringLiteral("Disconnected"), this, SLOT(disconnected()));
    retriesLeft_ = retryCount;
    isJoined_ = true;
    Q_EMIT joined();
}

void MessageBus::disconnected() {
    if (!isJoined_)
        return;
    isJoined_ = false;
    if (!loop_) {
        isAbsent_ = true;
        Q_EMIT left();
        return;
    }
    Q_EMIT left();
    greet();
}

void MessageBus::awaitAnother() {
    isAbsent_ = true;
    const QStringList folders = safeFolders(addresses_);
    if (!folders.isEmpty()) {
        folders_ = std::make_unique<QFileSystemWatcher>(folders);
        connect(folders_.get(), &QFileSystemWatcher::directoryChanged, this, [this] {
            retriesLeft_ = retryCount;
            greetAgainShortly();
        });
    }
    greetAgainShortly();
    Q_EMIT left();
}

void MessageBus::greetAgainShortly() {
    if (retriesLeft_ <= 0 || retry_.isActive())
        return;
    const auto interval = firstRetryInterval * (1 << (retryCount - retriesLeft_));
    --retriesLeft_;
    retry_ = ScopedTimer(loop_->scheduleOnce(interval, [this] { greet(); }));
}

} // namespace tilewright
