// What anybody on the session's bus may send, and too much of it.

#include "FakeIdleService.h"
#include "FakeNotifierWatcher.h"
#include "FakePortal.h"
#include "PrivateBus.h"

#include <FakeMainLoop.h>
#include <FreeDesktop/BusNameOwner.h>
#include <FreeDesktop/FreeDesktopAppearance.h>
#include <FreeDesktop/FreeDesktopInstanceActivation.h>
#include <FreeDesktop/IdleInhibition.h>
#include <FreeDesktop/StatusNotifierItem.h>
#include <Waiting.h>

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QIcon>
#include <QPixmap>
#include <QSignalSpy>
#include <algorithm>
#include <gtest/gtest.h>
#include <malloc.h>

namespace tilewright::testing {
namespace {

const char* const interfaceSettings = "org.gnome.desktop.interface";

/// In bytes; what is allocated on the heap and not freed.
std::size_t heapInUse() {
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

QDBusMessage settingChanged(const QString& receiver, const QString& key, const QVariant& value) {
    QDBusMessage signal = QDBusMessage::createTargetedSignal(
        receiver, QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"));
    signal << QString::fromLatin1(interfaceSettings) << key
           << QVariant::fromValue(QDBusVariant(value));
    return signal;
}

class BusFlood : public ::testing::Test {
protected:
    /// Calls a method of an object again and again, without wishing for an answer.
    void call(const QString& service, const QString& path, const QString& interface,
              const QString& method, const QVariantList& arguments, int times) {
        QDBusConnection anybody = bus.connect();
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(arguments);
        for (int i = 0; i < times; ++i)
            anybody.send(message);
        PrivateBus::takeAllIn(anybody);
    }

    PrivateBus bus;
    FakeMainLoop loop;
};

const IdleService& screenSaver() {
    return idleServices().front();
}

const IdleService& portalService() {
    return *std::ranges::find(idleServices(), IdleService::Grant::request, &IdleService::grant);
}

} // namespace

TEST_F(BusFlood, OfSettingsThatThePortalDidNotSendIsNotHeard) {
    FakePortal portal(bus.connect());
    portal.set(interfaceSettings, "enable-animations", true);
    portal.appear();
    const QDBusConnection own = bus.connect();
    MessageBus ownBus(own);
    const FreeDesktopAppearance appearance(ownBus);
    QSignalSpy changes(&appearance, &FreeDesktopAppearance::reducedMotionChanged);
    ASSERT_TRUE(waitUntil([&] { return appearance.prefersReducedMotion() == false; }));
    FakePortal anybody(bus.connect());
    for (int i = 0; i < 1000; ++i)
        anybody.change(interfaceSettings, "enable-animations", i % 2 == 0);
    QDBusConnection sender = bus.connect();
    for (int i = 0; i < 1000; ++i)
        sender.send(settingChanged(own.baseService(), QStringLiteral("enable-animations"), false));
    PrivateBus::takeAllIn(sender);
    portal.change("org.freedesktop.appearance", "color-scheme", 1U);
    EXPECT_TRUE(waitUntil([&] { return appearance.prefersDark(); }));
    EXPECT_EQ(changes.size(), 1) << "what the portal told at first";
}

TEST_F(BusFlood, OfSettingsThatNobodyReadsIsNotKept) {
    FakePortal portal(bus.connect());
    portal.appear();
    MessageBus ownBus(bus.connect());
    const FreeDesktopAppearance appearance(ownBus);
    ASSERT_TRUE(waitUntil([&] { return portal.reads == 1; }));
    const QString value(500, u'x');
    const auto flood = [&](int first) {
        for (int i = first; i < first + 20'000; ++i)
            Q_EMIT portal.SettingChanged(QString::fromLatin1(interfaceSettings),
                                         QStringLiteral("key-%1").arg(i), QDBusVariant(value));
        const bool isDark = !appearance.prefersDark();
        portal.change("org.freedesktop.appearance", "color-scheme", isDark ? 1U : 0U);
        EXPECT_TRUE(waitUntil([&] { return appearance.prefersDark() == isDark; }));
    };
    // Queues grow to their size.
    flood(0);
    const std::size_t before = heapInUse();
    flood(20'000);
    constexpr std::size_t little = 2'000'000;
    EXPECT_LT(heapInUse(), before + little);
}

TEST_F(BusFlood, OfClicksIsOne) {
    const FakeNotifierWatcher watcher(bus.connect());
    const QDBusConnection own = bus.connect();
    MessageBus ownBus(own);
    StatusNotifierItem item(loop, ownBus);
    QSignalSpy clicks(&item, &StatusNotifierItem::activated);
    ASSERT_TRUE(waitUntil([&] { return item.isHosted(); }));
    call(own.baseService(), QStringLiteral("/StatusNotifierItem"),
         QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("Activate"), {1, 2}, 100);
    call(own.baseService(), QStringLiteral("/StatusNotifierItem"),
         QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("ContextMenu"), {3, 4}, 100);
    PrivateBus::takeAllIn(own);
    EXPECT_TRUE(waitUntil([&] { return !clicks.isEmpty(); }));
    QCoreApplication::processEvents();
    ASSERT_EQ(clicks.size(), 1);
    EXPECT_EQ(clicks[0][0].value<NativePixel>(), (NativePixel{3, 4})) << "the last of them";
}

TEST_F(BusFlood, OfStartsIsOne) {
    const QDBusConnection own = bus.connect();
    MessageBus ownBus(own);
    FreeDesktopInstanceActivation instance(QStringLiteral(":0"), ownBus);
    ASSERT_EQ(instance.claim(), InstanceActivation::Claim::first);
    QSignalSpy requested(&instance, &InstanceActivation::activationRequested);
    call(instance.serviceName(), QStringLiteral("/org/tilewright/Tilewright"),
         QStringLiteral("org.tilewright.Instance"), QStringLiteral("Activate"), {}, 100);
    PrivateBus::takeAllIn(own);
    EXPECT_TRUE(waitUntil([&] { return !requested.isEmpty(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(requested.size(), 1);
}

TEST_F(BusFlood, OfHostsThatComeAndGoIsAskedAboutOnceAtATime) {
    const QDBusConnection watchers = bus.connect();
    FakeNotifierWatcher watcher(watchers);
    const QDBusConnection own = bus.connect();
    MessageBus ownBus(own);
    const StatusNotifierItem item(loop, ownBus);
    ASSERT_TRUE(waitUntil([&] { return item.isHosted(); }));
    const int asked = watcher.timesAsked;
    for (int i = 0; i < 100; ++i)
        watcher.setHost(i % 2 == 0);
    PrivateBus::takeAllIn(watchers);
    PrivateBus::takeAllIn(own);
    EXPECT_TRUE(waitUntil([&] { return !item.isHosted(); }));
    PrivateBus::takeAllIn(own);
    QCoreApplication::processEvents();
    EXPECT_LE(watcher.timesAsked, asked + 2);
}

TEST_F(BusFlood, OfOwnersOfANameIsOne) {
    const QDBusConnection own = bus.connect();
    const QString name = QStringLiteral("org.example.Name");
    const BusNameOwner owner(own, name);
    QSignalSpy changes(&owner, &BusNameOwner::changed);
    ASSERT_TRUE(waitUntil([&] { return changes.size() == 1; })) << "that there is none";
    QDBusConnection other = bus.connect();
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(other.registerService(name));
        EXPECT_TRUE(other.unregisterService(name));
    }
    EXPECT_TRUE(other.registerService(name));
    PrivateBus::takeAllIn(own);
    EXPECT_TRUE(waitUntil([&] { return owner.owner() == other.baseService(); }));
    EXPECT_EQ(changes.size(), 2);
}

TEST_F(BusFlood, OfOwnersThatTheBusDidNotTellOfIsNotHeard) {
    const QDBusConnection own = bus.connect();
    const QString name = QStringLiteral("org.example.Name");
    const BusNameOwner owner(own, name);
    QSignalSpy changes(&owner, &BusNameOwner::changed);
    ASSERT_TRUE(waitUntil([&] { return changes.size() == 1; }));
    QDBusConnection liar = bus.connect();
    QDBusMessage lie = QDBusMessage::createTargetedSignal(
        own.baseService(), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameOwnerChanged"));
    lie << name << QString() << liar.baseService();
    for (int i = 0; i < 100; ++i)
        liar.send(lie);
    PrivateBus::takeAllIn(liar);
    PrivateBus::takeAllIn(own);
    QDBusConnection other = bus.connect();
    EXPECT_TRUE(other.registerService(name));
    EXPECT_TRUE(waitUntil([&] { return owner.owner() == other.baseService(); }));
    EXPECT_EQ(changes.size(), 2);
}

TEST_F(BusFlood, OfSettingsToldAtOnceIsReadOnceAndNotKept) {
    FakePortal portal(bus.connect());
    const QString value(500, u'x');
    for (int i = 0; i < 20'000; ++i)
        portal.set(interfaceSettings, QByteArray("key-" + QByteArray::number(i)).constData(),
                   value);
    portal.set("org.freedesktop.appearance", "color-scheme", 1U);
    MessageBus ownBus(bus.connect());
    const FreeDesktopAppearance appearance(ownBus);
    PrivateBus::takeAllIn(ownBus.connection());
    const std::size_t before = heapInUse();
    portal.appear();
    EXPECT_TRUE(waitUntil([&] { return appearance.prefersDark(); }));
    EXPECT_EQ(portal.reads, 1);
    constexpr std::size_t little = 2'000'000;
    EXPECT_TRUE(waitUntil([&] { return heapInUse() < before + little; }));
}

TEST_F(BusFlood, OfQuestionsForTheItemLeavesNothingBehind) {
    const FakeNotifierWatcher watcher(bus.connect());
    const QDBusConnection own = bus.connect();
    MessageBus ownBus(own);
    StatusNotifierItem item(loop, ownBus);
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::red);
    item.setIcon(QString(), QIcon(pixmap));
    ASSERT_TRUE(waitUntil([&] { return item.isHosted(); }));
    const auto flood = [&] {
        call(own.baseService(), QStringLiteral("/StatusNotifierItem"),
             QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
             {QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("IconPixmap")}, 1000);
        PrivateBus::takeAllIn(own);
        QCoreApplication::processEvents();
        PrivateBus::takeAllIn(own);
    };
    // Queues grow to their size.
    flood();
    const std::size_t before = heapInUse();
    flood();
    flood();
    constexpr std::size_t little = 2'000'000;
    EXPECT_TRUE(waitUntil([&] { return heapInUse() < before + little; }));
}

TEST_F(BusFlood, OfOwnersOfAnIdleServiceLeadsToAFewQuestions) {
    const QDBusConnection own = bus.connect();
    FakeIdleService service(bus.connect(), FakeIdleService::granting(7U));
    QObject parent;
    IdleInhibition inhibition(loop, screenSaver(), own, QStringLiteral("reason"), &parent);
    ASSERT_TRUE(waitUntil([&] { return inhibition.state() == IdleInhibition::State::absent; }));
    for (int i = 0; i < 300; ++i) {
        service.queueFor(screenSaver().name);
        service.giveUp(screenSaver().name);
    }
    service.queueFor(screenSaver().name);
    PrivateBus::takeAllIn(own);
    EXPECT_TRUE(waitUntil([&] { return inhibition.state() == IdleInhibition::State::held; }));
    EXPECT_LE(service.asked().size(), 3U);
}

TEST_F(BusFlood, OfWordsInThePortalsPlaceDoesNotKeepThePortalsOwnFromBeingHeard) {
    const QDBusConnection own = bus.connect();
    FakeIdleService service(bus.connect(), FakeIdleService::silent());
    service.queueFor(portalService().name);
    QObject parent;
    IdleInhibition inhibition(loop, portalService(), own, QStringLiteral("reason"), &parent);
    ASSERT_TRUE(waitUntil([&] { return service.asked().size() == 1; }));
    const QDBusMessage question = service.asked().front();
    const QString token = qdbus_cast<QVariantMap>(question.arguments().value(2))
                              .value(QStringLiteral("handle_token"))
                              .toString();
    const QString request = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                                .arg(own.baseService().mid(1).replace(u'.', u'_'), token);
    const auto respond = [&](QDBusConnection from, uint response, int times) {
        QDBusMessage message = QDBusMessage::createTargetedSignal(
            own.baseService(), request, QStringLiteral("org.freedesktop.portal.Request"),
            QStringLiteral("Response"));
        message << response << QVariantMap();
        for (int i = 0; i < times; ++i)
            from.send(message);
        PrivateBus::takeAllIn(from);
    };
    respond(bus.connect(), 1U, 1000);
    respond(service.bus(), 0U, 1);
    service.bus().send(question.createReply(QVariant::fromValue(QDBusObjectPath(request))));
    EXPECT_TRUE(waitUntil([&] { return inhibition.state() == IdleInhibition::State::held; }));
}

} // namespace tilewright::testing
