// Hosts of the item: an X11 tray of another make, a watcher that comes without a host, and a panel
// that draws the installed symbol in its own colour.

#include "FakeNotifierWatcher.h"
#include "SilentNotifierWatcher.h"
#include "SlowTray.h"
#include "TrayDesktop.h"

#include <Bars.h>
#include <Waiting.h>

#include <QDir>
#include <QFile>
#include <csignal>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

/// How light the bar's ground and what is drawn on it are, from 0 to 255.
struct Tones {
    int ground = 0;
    int drawn = 0;
};

/// The commonest tone of a picture, and the one farthest from it.
Tones tonesOf(const QImage& picture) {
    std::map<int, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++counts[qGray(picture.pixel(x, y))];
    }
    Tones tones;
    int most = 0;
    for (const auto& [tone, count] : counts) {
        if (count > most) {
            most = count;
            tones.ground = tone;
        }
    }
    tones.drawn = tones.ground;
    for (const auto& [tone, count] : counts) {
        if (std::abs(tone - tones.ground) > std::abs(tones.drawn - tones.ground))
            tones.drawn = tone;
    }
    return tones;
}

class SymbolicItem : public ::testing::TestWithParam<bool> {};

} // namespace

TEST(LoneTray, ShowsTheItemThatOpensAndClosesThePanel) {
    TrayDesktop desktop;
    startLoneTray(desktop.session());
    desktop.startProgram();
    const QRect item = desktop.waitForItem();
    for (int round = 0; round < 2; ++round) {
        desktop.input().click(item.center());
        const QRect panel = desktop.waitForPanel();
        EXPECT_TRUE(QRect({}, desktop.inspector().screenSize()).contains(panel));
        EXPECT_GT(panel.top(), item.bottom());
        EXPECT_GE(panel.right(), item.center().x());
        desktop.input().click(item.center());
        EXPECT_TRUE(waitUntil([&] { return !desktop.panel(); })) << "by a second click";
    }
}

TEST(SlowSystemTray, IsAskedToTakeTheItemInBeforeItAnnouncesItselfAndNotAgain) {
    TrayDesktop desktop;
    desktop.startProgram();
    desktop.waitUntilFound();
    for (int start = 0; start < 2; ++start) {
        {
            SlowTray tray(desktop.session().display());
            EXPECT_TRUE(waitUntil([&] { return tray.isLastThere(); }));
            tray.announce();
            EXPECT_TRUE(staysTrue([&] { return tray.asked().size() == 1 && tray.isLastThere(); },
                                  std::chrono::milliseconds(300)));
        }
        EXPECT_TRUE(waitUntil([&] { return !desktop.item(); }));
    }
}

TEST(SlowSystemTray, GivesTheItemToTheNextOneThatComesWhileTheProgramIsBusy) {
    TrayDesktop desktop;
    Subprocess& program = desktop.startProgram();
    desktop.waitUntilFound();
    std::optional<SlowTray> tray(desktop.session().display());
    ASSERT_TRUE(waitUntil([&] { return tray->isLastThere(); }));
    for (int round = 0; round < 5; ++round) {
        program.signal(SIGSTOP);
        tray.reset();
        tray.emplace(desktop.session().display());
        tray->announce();
        program.signal(SIGCONT);
        EXPECT_TRUE(waitUntil([&] { return tray->isLastThere(); }));
        EXPECT_TRUE(staysTrue([&] { return tray->asked().size() == 1 && tray->isLastThere(); },
                              std::chrono::milliseconds(300)));
    }
}

TEST(SlowSystemTray, GivesTheItemToTheOneThatTakesItsPlaceThoughItsWindowStays) {
    TrayDesktop desktop;
    desktop.startProgram();
    desktop.waitUntilFound();
    SlowTray former(desktop.session().display());
    ASSERT_TRUE(waitUntil([&] { return former.isLastThere(); }));
    SlowTray next(desktop.session().display());
    EXPECT_TRUE(waitUntil([&] { return next.isLastThere(); }));
    EXPECT_TRUE(staysTrue([&] { return next.asked().size() == 1 && next.isLastThere(); },
                          std::chrono::milliseconds(300)));
    EXPECT_FALSE(former.isLastThere());
}

TEST(WatcherWithoutAHost, LeavesTheItemInTheSystemTrayUntilAHostComes) {
    TrayDesktop desktop;
    const QString name = QStringLiteral("watcher");
    {
        FakeNotifierWatcher watcher(
            QDBusConnection::connectToBus(desktop.session().busAddress(), name), false);
        startTint2(desktop.session());
        desktop.startProgram();
        const QRect item = desktop.waitForItem();
        EXPECT_TRUE(waitUntil([&] { return watcher.items.size() == 1; })) << "it has registered";
        desktop.input().click(item.center());
        EXPECT_FALSE(desktop.waitForPanel().isEmpty());
        desktop.input().tapKey(keysym::escape);
        EXPECT_TRUE(waitUntil([&] { return !desktop.panel(); }));
        watcher.setHost(true);
        EXPECT_TRUE(waitUntil([&] { return !desktop.item(); })) << "never on two bars";
        watcher.setHost(false);
        EXPECT_FALSE(desktop.waitForItem().isEmpty());
    }
    QDBusConnection::disconnectFromBus(name);
}

TEST(HostThatComesJustAfterTheProgramHasAskedForOne, LeavesTheItemToATrayThatTakesItsPlace) {
    TrayDesktop desktop;
    const QString name = QStringLiteral("sudden host");
    {
        FakeNotifierWatcher watcher(
            QDBusConnection::connectToBus(desktop.session().busAddress(), name), false);
        watcher.hostComesAfterQuestion = 1;
        desktop.startProgram();
        ASSERT_TRUE(waitUntil([&] { return watcher.timesAsked > 1; }));
        EXPECT_TRUE(watcher.hasHost);
        watcher.setHost(false);
        startTint2(desktop.session());
        desktop.input().click(desktop.waitForItem().center());
        EXPECT_FALSE(desktop.waitForPanel().isEmpty());
    }
    QDBusConnection::disconnectFromBus(name);
}

TEST(WatcherThatNeverAnswers, LeavesTheItemInTheSystemTray) {
    TrayDesktop desktop;
    const QString name = QStringLiteral("silent watcher");
    {
        const SilentNotifierWatcher watcher(
            QDBusConnection::connectToBus(desktop.session().busAddress(), name));
        startTint2(desktop.session());
        desktop.startProgram();
        ASSERT_TRUE(waitUntil([&] { return !watcher.asked.empty(); }));
        desktop.input().click(desktop.waitForItem().center());
        EXPECT_FALSE(desktop.waitForPanel().isEmpty());
    }
    QDBusConnection::disconnectFromBus(name);
}

TEST(WatcherThatMakesNoSense, LeavesTheItemInTheSystemTray) {
    TrayDesktop desktop;
    const QString name = QStringLiteral("senseless watcher");
    {
        SilentNotifierWatcher watcher(
            QDBusConnection::connectToBus(desktop.session().busAddress(), name));
        startTint2(desktop.session());
        desktop.startProgram();
        ASSERT_TRUE(waitUntil([&] { return !watcher.asked.empty(); }));
        watcher.answer(QStringLiteral("true"));
        desktop.input().click(desktop.waitForItem().center());
        EXPECT_FALSE(desktop.waitForPanel().isEmpty());
    }
    QDBusConnection::disconnectFromBus(name);
}

TEST_P(SymbolicItem, IsDrawnInTheHostsOwnColour) {
    TrayDesktop desktop;
    const bool isDark = GetParam();
    const QString home = desktop.session().home();
    for (const char* symbol : {"cup-and-saucer", "cup-and-saucer-fill"}) {
        const QString file =
            QStringLiteral("tilewright-%1-symbolic.svg").arg(QLatin1String(symbol));
        const QString folder = home + QStringLiteral("/.local/share/icons/hicolor/symbolic/apps/");
        ASSERT_TRUE(QDir().mkpath(folder));
        ASSERT_TRUE(QFile::copy(QStringLiteral(TILEWRIGHT_ICONS "/") + file, folder + file));
    }
    startXfcePanel(desktop.session(),
                   isDark ? XfceItems::symbolsOnDark : XfceItems::symbolsOnLight);
    const auto tones = [&] {
        // Nothing else is on the bar; its borders, and the line below it, are left out.
        return tonesOf(desktop.inspector().screenshot(QRect(3, 4, 150, 20)));
    };
    // The bar, empty.
    ASSERT_TRUE(waitUntil([&] {
        const int ground = tones().ground;
        return isDark ? ground > 0 && ground < 90 : ground > 200;
    })) << tones().ground;
    desktop.startProgram();
    EXPECT_TRUE(waitUntil([&] {
        const Tones seen = tones();
        // Not the grey that serves where the host does not know the symbol.
        return isDark ? seen.drawn > 200 : seen.drawn < 90;
    })) << "on "
        << tones().ground << ": " << tones().drawn;
}

INSTANTIATE_TEST_SUITE_P(, SymbolicItem, ::testing::Bool(),
                         [](const auto& parameter) { return parameter.param ? "Dark" : "Light"; });

} // namespace tilewright::testing
