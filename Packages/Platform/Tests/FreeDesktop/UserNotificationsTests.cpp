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
    explicit FakeNotificationService(QDBusConnection bus)
        : bus_(std::move(bus)) {
        bus_.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                            QDBusConnection::ExportAllSlots);
        bus_.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }
    /// The user clicks a message, or so somebody says.
    static void click(QDBusConnection bus, uint id, const QString& action) {
        QDBusMessage signal = QDBusMessage::createSignal(
            QStringLiteral("/org/freedesktop/Notifications"),
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("ActionInvoked"));
        signal << id << action;
        bus.send(signal);
    }
    void click(uint id, const QString& action = QStringLiteral("default")) const {
        click(bus_, id, action);
    }
    QStringList shown;
    QStringList actions;

public Q_SLOTS:
    uint Notify(const QString& application, uint /*replaces*/, const QString& /*icon*/,
                const QString& title, const QString& text, const QStringList& offered,
                const QVariantMap& /*hints*/, int /*timeout*/) {
        shown.append(application + u'|' + title + u'|' + text);
        actions = offered;
        return static_cast<uint>(shown.size());
    }

private:
    QDBusConnection bus_;
};

} // namespace

TEST(FreeDesktopUserNotifications, ShowsAMessageThroughTheDesktopsService) {
    PrivateBus bus;
    const FakeNotificationService service(bus.connect());
    const MessageBus own(bus.connect());
    FreeDesktopUserNotifications notifications(own);
    notifications.show(QStringLiteral("Title"), QStringLiteral("A < B & C"), {});
    EXPECT_TRUE(waitUntil([&] { return service.shown.size() == 1; }));
    EXPECT_EQ(service.shown.value(0), QStringLiteral("Tilewright|Title|A &lt; B &amp; C"))
        << "the text may be read as markup";
}

TEST(FreeDesktopUserNotifications, LeadsWhoClicksTheLatestMessageToWhatItIsAbout) {
    PrivateBus bus;
    const FakeNotificationService service(bus.connect());
    const MessageBus own(bus.connect());
    FreeDesktopUserNotifications notifications(own);
    int first = 0;
    int second = 0;
    notifications.show(QStringLiteral("One"), QStringLiteral("Text"), [&] { ++first; });
    notifications.show(QStringLiteral("Two"), QStringLiteral("Text"), [&] { ++second; });
    ASSERT_TRUE(waitUntil([&] { return service.shown.size() == 2; }));
    EXPECT_EQ(service.actions.value(0), QStringLiteral("default"));
    // Its answers have been heard once its signals are.
    ASSERT_TRUE(waitUntil([&] {
        FakeNotificationService::click(bus.connect(), 2, QStringLiteral("default"));
        service.click(1);
        service.click(2, QStringLiteral("other"));
        service.click(7);
        service.click(2);
        return second == 1;
    }));
    service.click(2);
    service.click(1);
    PrivateBus::takeAllIn(own.connection());
    QCoreApplication::processEvents();
    EXPECT_EQ(second, 1) << "once for each message";
    EXPECT_EQ(first, 0);
}

TEST(FreeDesktopUserNotifications, HearsOfClicksFromTheServiceAlone) {
    PrivateBus bus;
    const FakeNotificationService service(bus.connect());
    const MessageBus own(bus.connect());
    FreeDesktopUserNotifications notifications(own);
    int clicks = 0;
    notifications.show(QStringLiteral("One"), QStringLiteral("Text"), [&] { ++clicks; });
    ASSERT_TRUE(waitUntil([&] { return service.shown.size() == 1; }));
    const QDBusConnection stranger = bus.connect();
    for (int i = 0; i < 20; ++i) {
        FakeNotificationService::click(stranger, 1, QStringLiteral("default"));
        PrivateBus::takeAllIn(stranger);
        PrivateBus::takeAllIn(own.connection());
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(clicks, 0);
    service.click(1);
    EXPECT_TRUE(waitUntil([&] { return clicks == 1; }));
}

TEST(FreeDesktopUserNotifications, StaysSilentWithoutABus) {
    const MessageBus absent(PrivateBus::absent());
    FreeDesktopUserNotifications notifications(absent);
    notifications.show(QStringLiteral("Title"), QStringLiteral("Text"), {});
    EXPECT_FALSE(PrivateBus::absent().isConnected());
}

} // namespace tilewright::testing

#include "UserNotificationsTests.moc"
