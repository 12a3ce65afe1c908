#include "SessionHands.h"

#include "FakeIdleService.h"
#include "FakeNotifierWatcher.h"
#include "FakePortal.h"

#include <FreeDesktop/StatusNotifierPixmap.h>
#include <Waiting.h>

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

namespace tilewright::testing {

namespace {

QDBusMessage callToItem(const QString& service, const QString& interface, const QString& method,
                        const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, QStringLiteral("/StatusNotifierItem"), interface, method);
    message.setArguments(arguments);
    return message;
}

QString itemInterface() {
    return QStringLiteral("org.kde.StatusNotifierItem");
}

} // namespace

SessionHands::SessionHands(QString busAddress)
    : busAddress_(std::move(busAddress))
    , watcher_(std::make_unique<FakeNotifierWatcher>(connect())) {}

SessionHands::~SessionHands() {
    watcher_.reset();
    portal_.reset();
    idleService_.reset();
    for (const QString& name : connections_)
        QDBusConnection::disconnectFromBus(name);
}

QDBusConnection SessionHands::connect() {
    static int count = 0;
    connections_.append(QStringLiteral("hand-%1").arg(++count));
    return QDBusConnection::connectToBus(busAddress_, connections_.back());
}

std::optional<ShownItem> SessionHands::shownItem() {
    const auto name = itemsProperty("Title");
    const auto pictures = itemsProperty("IconPixmap");
    if (!name || !pictures)
        return std::nullopt;
    const auto pixmaps = qdbus_cast<StatusNotifierPixmaps>(*pictures);
    return ShownItem{name->toString(), pixmaps.isEmpty() ? QImage() : pixmaps.back().toImage()};
}

std::optional<QVariant> SessionHands::itemsProperty(const char* name) {
    if (watcher_->items.isEmpty())
        return std::nullopt;
    const QDBusMessage message =
        callToItem(watcher_->items.back(), QStringLiteral("org.freedesktop.DBus.Properties"),
                   QStringLiteral("Get"), {itemInterface(), QString::fromLatin1(name)});
    const QDBusPendingCallWatcher pending(QDBusConnection(connections_.front()).asyncCall(message));
    if (!waitUntil([&] { return pending.isFinished(); }))
        return std::nullopt;
    const QDBusMessage reply = pending.reply();
    if (reply.type() != QDBusMessage::ReplyMessage)
        return std::nullopt;
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

void SessionHands::clickItem(QPoint at) {
    QDBusConnection(connections_.front())
        .asyncCall(callToItem(watcher_->items.back(), itemInterface(), QStringLiteral("Activate"),
                              {at.x(), at.y()}));
}

void SessionHands::wishReducedMotion(bool isReduced) {
    setWish("org.gnome.desktop.interface", "enable-animations", !isReduced);
}

void SessionHands::wishDark(bool isDark) {
    constexpr uint dark = 1;
    constexpr uint light = 2;
    setWish("org.freedesktop.appearance", "color-scheme", isDark ? dark : light);
}

void SessionHands::setWish(const char* group, const char* key, const QVariant& value) {
    if (portal_) {
        portal_->change(group, key, value);
        return;
    }
    portal_ = std::make_unique<FakePortal>(connect());
    portal_->set(group, key, value);
    portal_->appear();
}

int SessionHands::heldInhibitions() {
    if (!idleService_) {
        idleService_ =
            std::make_unique<FakeIdleService>(connect(), FakeIdleService::granting(quint32{7}));
        idleService_->queueFor(QStringLiteral("org.freedesktop.ScreenSaver"));
    }
    return static_cast<int>(idleService_->asked().size() - idleService_->released().size());
}

} // namespace tilewright::testing
