#include "FreeDesktopInstanceActivation.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>

namespace tilewright {

namespace {

constexpr int patienceInMilliseconds = 2000;
constexpr int attempts = 3;
constexpr quint32 queue = 0;
constexpr quint32 doNotQueue = 4;
constexpr quint32 isPrimaryOwner = 1;
constexpr quint32 isAlreadyOwner = 4;

QString objectPath() {
    return QStringLiteral("/org/tilewright/Tilewright");
}

QString interfaceName() {
    return QStringLiteral("org.tilewright.Instance");
}

/// A bus name takes letters, digits, "_" and "-" only.
QString nameFor(const QString& display) {
    const qsizetype colon = display.lastIndexOf(u':');
    const qsizetype dot = colon < 0 ? -1 : display.indexOf(u'.', colon);
    QString name = QStringLiteral("org.tilewright.Tilewright.Display");
    for (const char byte : display.left(dot).toUtf8()) {
        if ((byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') ||
            (byte >= 'A' && byte <= 'Z'))
            name += QLatin1Char(byte);
        else
            name += u'_' + QString::fromLatin1(QByteArray(1, byte).toHex());
    }
    return name;
}

class InstanceAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.tilewright.Instance")

public:
    explicit InstanceAdaptor(InstanceActivation* instance)
        : QDBusAbstractAdaptor(instance)
        , instance_(instance) {}

public Q_SLOTS:
    void Activate() { instance_->requestActivation(); }

private:
    InstanceActivation* instance_;
};

} // namespace

FreeDesktopInstanceActivation::FreeDesktopInstanceActivation(const QString& display,
                                                             MessageBus& bus)
    : bus_(bus)
    , serviceName_(nameFor(display)) {
    new InstanceAdaptor(this);
    connect(&bus_, &MessageBus::joined, this, &FreeDesktopInstanceActivation::claimAgain);
}

FreeDesktopInstanceActivation::~FreeDesktopInstanceActivation() {
    if (!bus_.isJoined())
        return;
    QDBusConnection bus = bus_.connection();
    bus.unregisterObject(objectPath());
    if (!isFirst_)
        return;
    QDBusMessage release = callToBus(QStringLiteral("ReleaseName"));
    release << serviceName_;
    bus.send(release);
}

InstanceActivation::Claim FreeDesktopInstanceActivation::claim() {
    if (!bus_.isJoined()) {
        isFirst_ = true;
        return Claim::first;
    }
    // Before the name, so that whoever sees the name can call the object.
    QDBusConnection(bus_.connection())
        .registerObject(objectPath(), this, QDBusConnection::ExportAdaptors);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        isFirst_ = ownsName();
        if (isFirst_)
            return Claim::first;
        if (otherAnswers())
            return Claim::another;
        // The other one ended between the two calls: the name is free again.
    }
    isFirst_ = true;
    return Claim::first;
}

void FreeDesktopInstanceActivation::claimAgain() {
    if (!isFirst_)
        return;
    QDBusConnection bus = bus_.connection();
    bus.registerObject(objectPath(), this, QDBusConnection::ExportAdaptors);
    // Of two that were both the first, for want of a bus, the other one may have it until it ends.
    QDBusMessage request = callToBus(QStringLiteral("RequestName"));
    request << serviceName_ << queue;
    bus.send(request);
}

bool FreeDesktopInstanceActivation::ownsName() {
    QDBusMessage request = callToBus(QStringLiteral("RequestName"));
    request << serviceName_ << doNotQueue;
    const QDBusMessage reply =
        bus_.connection().call(request, QDBus::Block, patienceInMilliseconds);
    // A bus that does not answer cannot tell of another instance.
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return true;
    const quint32 result = reply.arguments().constFirst().toUInt();
    return result == isPrimaryOwner || result == isAlreadyOwner;
}

bool FreeDesktopInstanceActivation::otherAnswers() {
    QDBusMessage request = QDBusMessage::createMethodCall(
        serviceName_, objectPath(), interfaceName(), QStringLiteral("Activate"));
    request.setAutoStartService(false);
    const QDBusMessage reply =
        bus_.connection().call(request, QDBus::Block, patienceInMilliseconds);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return true;
    const QString error = reply.errorName();
    // One that is merely slow to answer still runs, and has the message in its queue.
    if (error == u"org.freedesktop.DBus.Error.ServiceUnknown" ||
        error == u"org.freedesktop.DBus.Error.NameHasNoOwner")
        return false;
    return isOwned();
}

bool FreeDesktopInstanceActivation::isOwned() {
    QDBusMessage request = callToBus(QStringLiteral("NameHasOwner"));
    request << serviceName_;
    const QDBusMessage reply =
        bus_.connection().call(request, QDBus::Block, patienceInMilliseconds);
    return !reply.arguments().isEmpty() && reply.arguments().constFirst().toBool();
}

} // namespace tilewright

#include "FreeDesktopInstanceActivation.moc"
