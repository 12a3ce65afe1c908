#include "FakeNotifierWatcher.h"
#include "NotifierHost.h"
#include "PrivateBus.h"
#include "SilentNotifierWatcher.h"

#include <FakeMainLoop.h>
#include <FakePlatform.h>
#include <FreeDesktop/FreeDesktopStatusItem.h>

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class FakeSystemTray final : public SystemTray {
public:
    [[nodiscard]] bool isThere() const override { return isThere_; }
    void setThere(bool isThere) {
        isThere_ = isThere;
        Q_EMIT changed();
    }

private:
    bool isThere_ = true;
};

class FreeDesktopStatusItemTest : public ::testing::Test {
protected:
    using Place = std::optional<AppKitRect>;
    class Clicks;

    /// On a screen 600 pixels high.
    static AppKitPoint centerOf(NativePixel pixel) {
        return {pixel.x + 0.5, 600 - (pixel.y + 0.5)};
    }
    static Place placeAt(NativePixel pixel) {
        const AppKitPoint center = centerOf(pixel);
        return AppKitRect{center.x, center.y, 0, 0};
    }

    void setBarHeight(int height) {
        screens.setScreens({makeScreen(
            {.frame = {0, 0, 800, 600},
             .visibleFrame = AppKitRect{0, 0, 800, 600 - static_cast<double>(height)}})});
    }

    PrivateBus bus;
    FakeMainLoop loop;
    MessageBus own{bus.connect()};
    FakeScreens screens;
    FakePointer pointer;
    FakeSystemTray tray;
    const FreeDesktopStatusItem::Display display{pointer, tray};
};

/// The item, and a host on which it is clicked.
class FreeDesktopStatusItemTest::Clicks {
public:
    explicit Clicks(FreeDesktopStatusItemTest& test)
        : Clicks(test, test.display) {}
    Clicks(FreeDesktopStatusItemTest& test,
           const std::optional<FreeDesktopStatusItem::Display>& display)
        : watcher_(test.bus.connect())
        , item_(test.screens, centerOf, test.loop, test.own, display)
        , host_(test.bus.connect()) {
        QObject::connect(&item_, &StatusItem::activated,
                         [this](const Place& place) { places_.push_back(place); });
        EXPECT_TRUE(waitUntil([&] { return watcher_.items.size() == 1; }));
    }

    /// What a click that the host tells to be there comes to.
    Place at(NativePixel told) {
        places_.clear();
        host_.call(watcher_.items.value(0), QStringLiteral("org.kde.StatusNotifierItem"),
                   QStringLiteral("Activate"), {told.x, told.y});
        EXPECT_TRUE(waitUntil([&] { return places_.size() == 1; }));
        return places_.empty() ? Place() : places_.front();
    }
    /// What is in the environment once the host has passed this on, and nobody has taken it there.
    QByteArray leaveKept(const QString& token) {
        host_.call(watcher_.items.value(0), QStringLiteral("org.kde.StatusNotifierItem"),
                   QStringLiteral("ProvideXdgActivationToken"), {token});
        const QByteArray kept = qgetenv("XDG_ACTIVATION_TOKEN");
        qunsetenv("XDG_ACTIVATION_TOKEN");
        return kept;
    }

private:
    FakeNotifierWatcher watcher_;
    FreeDesktopStatusItem item_;
    NotifierHost host_;
    std::vector<Place> places_;
};

} // namespace

TEST_F(FreeDesktopStatusItemTest, TakesTheSystemTrayOnlyWhereNoHostShowsItems) {
    FreeDesktopStatusItem item(screens, centerOf, loop, own, display);
    item.setSymbol(QStringLiteral("cup.and.saucer"), discIcon());
    EXPECT_FALSE(item.isInSystemTray()) << "before the bus has answered";
    EXPECT_TRUE(waitUntil([&] { return item.isInSystemTray(); }));
    auto watcher = std::make_unique<FakeNotifierWatcher>(bus.connect());
    EXPECT_TRUE(waitUntil([&] { return !item.isInSystemTray(); }));
    watcher.reset();
    EXPECT_TRUE(waitUntil([&] { return item.isInSystemTray(); }));
}

TEST_F(FreeDesktopStatusItemTest, TakesTheSystemTrayWhereTheWatcherNeverAnswersUntilItDoes) {
    SilentNotifierWatcher watcher(bus.connect());
    FreeDesktopStatusItem item(screens, centerOf, loop, own, display);
    item.setSymbol(QStringLiteral("cup.and.saucer"), discIcon());
    ASSERT_TRUE(waitUntil([&] { return watcher.asked.size() == 1; }));
    loop.advance(StatusNotifierItem::answerBound - MainLoop::Interval(1));
    EXPECT_FALSE(item.isInSystemTray());
    loop.advance(MainLoop::Interval(1));
    EXPECT_TRUE(item.isInSystemTray());
    watcher.answer(true);
    EXPECT_TRUE(waitUntil([&] { return !item.isInSystemTray(); }));
}

TEST_F(FreeDesktopStatusItemTest, TakesTheSystemTrayWhereTheWatcherSaysWhatMakesNoSense) {
    SilentNotifierWatcher watcher(bus.connect());
    FreeDesktopStatusItem item(screens, centerOf, loop, own, display);
    item.setSymbol(QStringLiteral("cup.and.saucer"), discIcon());
    ASSERT_TRUE(waitUntil([&] { return watcher.asked.size() == 1; }));
    watcher.answer(QStringLiteral("true"));
    EXPECT_TRUE(waitUntil([&] { return item.isInSystemTray(); }));
}

TEST_F(FreeDesktopStatusItemTest, TakesTheSystemTrayWhereTheBusNeverAnswersUntilItDoes) {
    const FakeNotifierWatcher watcher(bus.connect());
    bus.pause();
    MessageBus silent(loop, bus.address());
    FreeDesktopStatusItem item(screens, centerOf, loop, silent, display);
    item.setSymbol(QStringLiteral("cup.and.saucer"), discIcon());
    EXPECT_FALSE(item.isInSystemTray());
    loop.advance(StatusNotifierItem::answerBound);
    EXPECT_TRUE(item.isInSystemTray());
    bus.resume();
    EXPECT_TRUE(waitUntil([&] { return !item.isInSystemTray(); }));
    EXPECT_EQ(watcher.items.size(), 1);
}

TEST_F(FreeDesktopStatusItemTest, TellsWhereItWasClickedWhereItsHostKnows) {
    Clicks clicks(*this);
    EXPECT_EQ(clicks.at({400, 12}), placeAt({400, 12}));
    EXPECT_EQ(clicks.at({0, 0}), std::nullopt);
}

TEST_F(FreeDesktopStatusItemTest, KeepsTheLeaveToComeToTheFrontOnlyWhereACompositorGaveIt) {
    EXPECT_EQ(Clicks(*this, std::nullopt).leaveKept(QStringLiteral("leave-1")), "leave-1");
    EXPECT_EQ(Clicks(*this).leaveKept(QStringLiteral("leave-2")), QByteArray())
        << "the programs that this one starts would inherit it";
}

TEST_F(FreeDesktopStatusItemTest, IsByThePointerOnABarWhoseHostTellsAPlaceFarFromIt) {
    setBarHeight(30);
    Clicks clicks(*this);
    pointer.at = centerOf({700, 10});
    EXPECT_EQ(clicks.at({0, 30}), placeAt({700, 10})) << "the bar's own corner";
    EXPECT_EQ(clicks.at({635, 10}), placeAt({700, 10}));
    EXPECT_EQ(clicks.at({636, 10}), placeAt({636, 10})) << "as far as 64 points";
    EXPECT_EQ(clicks.at({700, 30}), placeAt({700, 30}));
    screens.qtScale = 2;
    EXPECT_EQ(clicks.at({572, 10}), placeAt({572, 10})) << "points of two pixels each";
    EXPECT_EQ(clicks.at({571, 10}), placeAt({700, 10}));
}

TEST_F(FreeDesktopStatusItemTest, IsWhereItsHostTellsWhileThePointerIsOnNoBar) {
    setBarHeight(30);
    Clicks clicks(*this);
    pointer.at = centerOf({700, 400});
    EXPECT_EQ(clicks.at({20, 10}), placeAt({20, 10})) << "clicked by the keyboard";
    pointer.at = centerOf({5000, 10});
    EXPECT_EQ(clicks.at({20, 10}), placeAt({20, 10})) << "on no display";
}

TEST_F(FreeDesktopStatusItemTest, IsWhereItsHostTellsWhereNobodyTellsOfThePointer) {
    setBarHeight(30);
    Clicks clicks(*this, std::nullopt);
    pointer.at = centerOf({700, 10});
    EXPECT_EQ(clicks.at({20, 10}), placeAt({20, 10}));
}

TEST_F(FreeDesktopStatusItemTest, WaitsForASystemTrayAndLeavesTheNextOnesToQt) {
    tray.setThere(false);
    MessageBus absent(PrivateBus::absent());
    FreeDesktopStatusItem item(screens, centerOf, loop, absent, display);
    item.setSymbol(QStringLiteral("cup.and.saucer"), discIcon());
    EXPECT_FALSE(item.isInSystemTray());
    tray.setThere(true);
    EXPECT_TRUE(item.isInSystemTray());
    tray.setThere(false);
    EXPECT_TRUE(item.isInSystemTray()) << "its window would go while the next one takes it in";
}

TEST_F(FreeDesktopStatusItemTest, TakesNoSystemTrayThatComesWhileAHostShowsItems) {
    tray.setThere(false);
    FakeNotifierWatcher watcher(bus.connect());
    FreeDesktopStatusItem item(screens, centerOf, loop, own, display);
    item.setSymbol(QStringLiteral("cup.and.saucer"), discIcon());
    ASSERT_TRUE(waitUntil([&] { return watcher.timesAsked > 0; }));
    tray.setThere(true);
    EXPECT_FALSE(item.isInSystemTray());
    watcher.setHost(false);
    EXPECT_TRUE(waitUntil([&] { return item.isInSystemTray(); }));
}

TEST_F(FreeDesktopStatusItemTest, TakesTheSystemTrayAtOnceWithoutABus) {
    MessageBus absent(PrivateBus::absent());
    FreeDesktopStatusItem item(screens, centerOf, loop, absent, display);
    item.setSymbol(QStringLiteral("cup.and.saucer"), discIcon());
    EXPECT_TRUE(item.isInSystemTray());
}

} // namespace tilewright::testing
