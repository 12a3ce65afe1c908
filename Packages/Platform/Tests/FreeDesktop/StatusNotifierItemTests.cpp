#include "FakeNotifierWatcher.h"
#include "NotifierHost.h"
#include "PrivateBus.h"

#include <FakeMainLoop.h>
#include <FreeDesktop/StatusNotifierItem.h>
#include <FreeDesktop/StatusNotifierPixmap.h>
#include <Waiting.h>

#include <QDBusVariant>
#include <QSignalSpy>
#include <gtest/gtest.h>
#include <optional>

namespace tilewright::testing {
namespace {

/// Counts a signal as a host receives it.
class SignalCounter final : public QObject {
    Q_OBJECT

public:
    int count = 0;

public Q_SLOTS:
    void add() { ++count; }
};

class StatusNotifierItemTest : public ::testing::Test {
protected:
    PrivateBus bus;
    FakeMainLoop loop;
    MessageBus own{bus.connect()};
    const QString interface = QStringLiteral("org.kde.StatusNotifierItem");
};

} // namespace

TEST_F(StatusNotifierItemTest, RegistersWithAWatcherThatIsThereAlready) {
    const FakeNotifierWatcher watcher(bus.connect());
    const StatusNotifierItem item(loop, own);
    EXPECT_TRUE(waitUntil([&] { return watcher.items.size() == 1; }));
    EXPECT_TRUE(waitUntil([&] { return item.isSettled() && item.isHosted(); }));
}

TEST_F(StatusNotifierItemTest, RegistersWithAWatcherThatAppearsLater) {
    const StatusNotifierItem item(loop, own);
    ASSERT_TRUE(waitUntil([&] { return item.isSettled(); }));
    EXPECT_FALSE(item.isHosted());
    const FakeNotifierWatcher watcher(bus.connect());
    EXPECT_TRUE(waitUntil([&] { return watcher.items.size() == 1 && item.isHosted(); }));
}

TEST_F(StatusNotifierItemTest, RegistersAgainWithEveryWatcherThatFollows) {
    auto watcher = std::make_unique<FakeNotifierWatcher>(bus.connect());
    const StatusNotifierItem item(loop, own);
    for (int restart = 0; restart < 3; ++restart) {
        ASSERT_TRUE(waitUntil([&] { return watcher->items.size() == 1 && item.isHosted(); }));
        watcher.reset();
        ASSERT_TRUE(waitUntil([&] { return !item.isHosted(); }));
        watcher = std::make_unique<FakeNotifierWatcher>(bus.connect());
    }
    EXPECT_TRUE(waitUntil([&] { return watcher->items.size() == 1 && item.isHosted(); }));
}

TEST_F(StatusNotifierItemTest, FollowsHostsThatComeToAWatcherAndGo) {
    FakeNotifierWatcher watcher(bus.connect(), false);
    const StatusNotifierItem item(loop, own);
    ASSERT_TRUE(waitUntil([&] { return item.isSettled() && watcher.items.size() == 1; }));
    EXPECT_FALSE(item.isHosted());
    watcher.setHost(true);
    EXPECT_TRUE(waitUntil([&] { return item.isHosted(); }));
    watcher.setHost(false);
    EXPECT_TRUE(waitUntil([&] { return !item.isHosted(); }));
}

TEST_F(StatusNotifierItemTest, HasNoHostWhereTheWatcherIsButANameAndRegistersOnceItIsMore) {
    QDBusConnection hollow = bus.connect();
    ASSERT_TRUE(hollow.registerService(QStringLiteral("org.kde.StatusNotifierWatcher")));
    const StatusNotifierItem item(loop, own);
    ASSERT_TRUE(waitUntil([&] { return item.isSettled(); }));
    EXPECT_FALSE(item.isHosted());
    FakeNotifierWatcher watcher(hollow, false);
    watcher.setHost(true);
    EXPECT_TRUE(waitUntil([&] { return watcher.items.size() == 1 && item.isHosted(); }));
}

TEST_F(StatusNotifierItemTest, WaitsForNoAnswerOfTheBusAtTheStart) {
    FakeNotifierWatcher watcher(bus.connect(), false);
    std::optional<StatusNotifierItem> item;
    EXPECT_TRUE(bus.isDoneWithoutAnAnswer([&] { item.emplace(loop, own); }));
    EXPECT_FALSE(item->isSettled());
    EXPECT_TRUE(waitUntil([&] { return item->isSettled() && watcher.items.size() == 1; }));
    watcher.setHost(true);
    EXPECT_TRUE(waitUntil([&] { return item->isHosted(); }));
}

TEST_F(StatusNotifierItemTest, BelievesNobodyButTheWatcherAboutItsHosts) {
    FakeNotifierWatcher watcher(bus.connect(), false);
    // Its name is taken already.
    FakeNotifierWatcher pretender(bus.connect(), false);
    const StatusNotifierItem item(loop, own);
    ASSERT_TRUE(waitUntil([&] { return item.isSettled(); }));
    QSignalSpy changes(&item, &StatusNotifierItem::hostedChanged);
    pretender.setHost(true);
    watcher.setHost(true);
    EXPECT_TRUE(waitUntil([&] { return item.isHosted(); }));
    pretender.setHost(false);
    watcher.setHost(false);
    EXPECT_TRUE(waitUntil([&] { return !item.isHosted(); }));
    EXPECT_EQ(changes.size(), 2);
}

TEST_F(StatusNotifierItemTest, SettlesWithoutABus) {
    MessageBus absent(PrivateBus::absent());
    const StatusNotifierItem item(loop, absent);
    EXPECT_TRUE(item.isSettled());
    EXPECT_FALSE(item.isHosted());
}

TEST_F(StatusNotifierItemTest, LosesItsHostWithTheBus) {
    const FakeNotifierWatcher watcher(bus.connect());
    const StatusNotifierItem item(loop, own);
    ASSERT_TRUE(waitUntil([&] { return item.isHosted(); }));
    bus.stop();
    EXPECT_TRUE(waitUntil([&] { return !item.isHosted(); }));
}

TEST_F(StatusNotifierItemTest, PassesClicksOnWithTheirPlace) {
    const FakeNotifierWatcher watcher(bus.connect());
    StatusNotifierItem item(loop, own);
    std::vector<NativePixel> places;
    QObject::connect(&item, &StatusNotifierItem::activated,
                     [&](NativePixel place) { places.push_back(place); });
    ASSERT_TRUE(waitUntil([&] { return watcher.items.size() == 1; }));
    NotifierHost host(bus.connect());
    const QString service = watcher.items.front();
    host.call(service, interface, QStringLiteral("Activate"), {11, 12});
    host.call(service, interface, QStringLiteral("SecondaryActivate"), {21, 22});
    host.call(service, interface, QStringLiteral("ContextMenu"), {31, 32});
    const QDBusMessage scrolled =
        host.call(service, interface, QStringLiteral("Scroll"), {120, QStringLiteral("vertical")});
    EXPECT_EQ(scrolled.type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitUntil([&] { return places.size() == 3; }));
    EXPECT_EQ(places, (std::vector<NativePixel>{{11, 12}, {21, 22}, {31, 32}}));
}

TEST_F(StatusNotifierItemTest, LeavesTheCompositorsLeaveToComeToTheFrontWhereQtTakesIt) {
    const FakeNotifierWatcher watcher(bus.connect());
    const StatusNotifierItem item(loop, own, StatusNotifierItem::ActivationToken::left);
    ASSERT_TRUE(waitUntil([&] { return watcher.items.size() == 1; }));
    NotifierHost host(bus.connect());
    const auto provide = [&](const QString& token) {
        return host
            .call(watcher.items.front(), interface, QStringLiteral("ProvideXdgActivationToken"),
                  {token})
            .type();
    };
    EXPECT_EQ(provide(QStringLiteral("leave-1")), QDBusMessage::ReplyMessage);
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "leave-1");
    EXPECT_EQ(provide(QString(100'000, u'x')), QDBusMessage::ReplyMessage);
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "leave-1");
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

TEST_F(StatusNotifierItemTest, DescribesItselfToHosts) {
    const FakeNotifierWatcher watcher(bus.connect());
    StatusNotifierItem item(loop, own);
    item.setTitle(QStringLiteral("Tilewright"));
    item.setIcon(QStringLiteral("some-icon-symbolic"), discIcon());
    ASSERT_TRUE(waitUntil([&] { return watcher.items.size() == 1; }));
    NotifierHost host(bus.connect());
    const QString service = watcher.items.front();
    EXPECT_EQ(host.property(service, QStringLiteral("Status")).toString(),
              QStringLiteral("Active"));
    EXPECT_EQ(host.property(service, QStringLiteral("Category")).toString(),
              QStringLiteral("ApplicationStatus"));
    EXPECT_EQ(host.property(service, QStringLiteral("Title")).toString(),
              QStringLiteral("Tilewright"));
    EXPECT_EQ(host.property(service, QStringLiteral("IconName")).toString(),
              QStringLiteral("some-icon-symbolic"));
    const QVariant isMenu = host.property(service, QStringLiteral("ItemIsMenu"));
    ASSERT_TRUE(isMenu.isValid());
    EXPECT_FALSE(isMenu.toBool());
}

TEST_F(StatusNotifierItemTest, OffersItsIconInSeveralSizes) {
    const FakeNotifierWatcher watcher(bus.connect());
    StatusNotifierItem item(loop, own);
    item.setIcon(QString(), discIcon());
    ASSERT_TRUE(waitUntil([&] { return watcher.items.size() == 1; }));
    NotifierHost host(bus.connect());
    const auto pixmaps = qdbus_cast<StatusNotifierPixmaps>(
        host.property(watcher.items.front(), QStringLiteral("IconPixmap")));
    ASSERT_GE(pixmaps.size(), 4);
    for (const StatusNotifierPixmap& pixmap : pixmaps) {
        const QImage image = pixmap.toImage();
        ASSERT_FALSE(image.isNull());
        EXPECT_EQ(image.size(), QSize(pixmap.width, pixmap.width));
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
        EXPECT_EQ(image.pixelColor(pixmap.width / 2, pixmap.width / 2), iconColorForAnyBar());
    }
}

TEST_F(StatusNotifierItemTest, TellsHostsAtOnceThatTheIconIsNew) {
    const FakeNotifierWatcher watcher(bus.connect());
    StatusNotifierItem item(loop, own);
    ASSERT_TRUE(waitUntil([&] { return watcher.items.size() == 1; }));
    SignalCounter renewed;
    QDBusConnection hostBus = bus.connect();
    hostBus.connect(watcher.items.front(), QStringLiteral("/StatusNotifierItem"), interface,
                    QStringLiteral("NewIcon"), &renewed, SLOT(add()));
    NotifierHost host(hostBus);
    // A round trip, after which the subscription stands.
    static_cast<void>(host.property(watcher.items.front(), QStringLiteral("Status")));
    item.setIcon(QStringLiteral("another-icon-symbolic"), discIcon());
    EXPECT_TRUE(waitUntil([&] { return renewed.count == 1; }));
}

TEST(StatusNotifierPixmap, KeepsEveryPixelInNetworkByteOrder) {
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, 0x80112233);
    image.setPixel(1, 0, 0xffa0b0c0);
    const StatusNotifierPixmap pixmap = StatusNotifierPixmap::fromImage(image);
    EXPECT_EQ(pixmap.data, QByteArray::fromHex("80112233ffa0b0c0"));
    EXPECT_EQ(pixmap.toImage(), image);
}

TEST(StatusNotifierPixmap, StandsOutAgainstLightAndDarkBars) {
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const double tone = luminance(iconColorForAnyBar());
    EXPECT_GE((luminance(Qt::white) + 0.05) / (tone + 0.05), 3.0);
    EXPECT_GE((tone + 0.05) / (luminance(QColor(0x2b, 0x2b, 0x2b)) + 0.05), 3.0);
}

TEST_F(StatusNotifierItemTest, RegistersAgainOnTheBusThatFollows) {
    MessageBus following(loop, bus.address());
    const StatusNotifierItem item(loop, following);
    {
        const FakeNotifierWatcher watcher(bus.connect());
        ASSERT_TRUE(waitUntil([&] { return watcher.items.size() == 1 && item.isHosted(); }));
    }
    bus.stop();
    ASSERT_TRUE(waitUntil([&] { return !item.isHosted() && !following.isJoined(); }));
    bus.start();
    loop.advance(std::chrono::seconds(1));
    const FakeNotifierWatcher watcher(bus.connect());
    EXPECT_TRUE(waitUntil([&] { return watcher.items.size() == 1 && item.isHosted(); }));
}

} // namespace tilewright::testing

#include "StatusNotifierItemTests.moc"
