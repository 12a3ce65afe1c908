#include "PrivateBus.h"

#include <FreeDesktop/FreeDesktopUserNotifications.h>
#include <Waiting.h>

#include <QDBusAbstractAdaptor>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class FakeNotificationService final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    explicit FakeNotificationService(QDBusConnection bus) {
        bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                           QDBusConnection::ExportAllSlots);
        bus.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }
    QStringList shown;

public Q_SLOTS:
    uint Notify(const QString& application, uint /*replaces*/, const QString& /*icon*/,
                const QString& title, const QString& text, const QStringList& /*actions*/,
                const QVariantMap& /*hints*/, int /*timeout*/) {
        shown.append(application + u'|' + title + u'|' + text);
        return 1;
    }
};

} // namespace

TEST(FreeDesktopUserNotifications, ShowsAMessageThroughTheDesktopsService) {
    PrivateBus bus;
    const FakeNotificationService service(bus.connect());
    const MessageBus own(bus.connect());
    FreeDesktopUserNotifications notifications(own);
    notifications.show(QStringLiteral("Title"), QStringLiteral("A < B & C"));
    EXPECT_TRUE(waitUntil([&] { return service.shown.size() == 1; }));
    EXPECT_EQ(service.shown.value(0), QStringLiteral("Tilewright|Title|A &lt; B &amp; C"))
        << "the text may be read as markup";
}

TEST(FreeDesktopUserNotifications, StaysSilentWithoutABus) {
    const MessageBus absent(PrivateBus::absent());
    FreeDesktopUserNotifications notifications(absent);
    notifications.show(QStringLiteral("Title"), QStringLiteral("Text"));
    EXPECT_FALSE(PrivateBus::absent().isConnected());
}

} // namespace tilewright::testing

#include "UserNotificationsTests.moc"
