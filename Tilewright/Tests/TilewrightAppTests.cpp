// The application as a whole, on a fake desktop but Qt's own event loop.

#include <FakePlatform.h>
#include <KeepAwake/KeepAwakeManager.h>
#include <Platform/QtMainLoop.h>
#include <Tilewright/SettingsView.h>
#include <Tilewright/SnapController.h>
#include <Tilewright/TilewrightApp.h>
#include <TilewrightUI/Look.h>
#include <Waiting.h>

#include <QApplication>
#include <QPointer>
#include <csignal>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class TilewrightAppTest : public ::testing::Test {
protected:
    TilewrightAppTest() {
        FakeScreen::Values values;
        values.frame = {0, 0, 800, 800};
        values.displayID = 1;
        platform.fakeScreens.setScreens({makeScreen(values)});
    }
    ~TilewrightAppTest() override { look::setPrefersReducedMotion(false); }

    /// Runs the application; once it has launched, `use`, which has to end it in some way. Answers
    /// the exit code.
    int run(const std::function<void(TilewrightApp&)>& use) {
        TilewrightApp app;
        loop.post([&] { loop.post([&] { use(app); }); });
        return app.run();
    }
    /// What happened at the end: whether the input was still watched when the session ended.
    void expectOrderlyEnd() {
        EXPECT_TRUE(sessionEndedWhileWatching);
        EXPECT_TRUE(platform.fakePowerAssertions.held.empty());
        EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
    }
    void startSession() {
        KeepAwakeManager& manager = KeepAwakeManager::shared();
        manager.activate(KeepAwakeSession::indefinite());
        ASSERT_EQ(platform.fakePowerAssertions.held.size(), 1U);
        QObject::connect(&manager, &ObservableObject::objectWillChange, [this] {
            sessionEndedWhileWatching = !platform.fakeEventMonitors.monitors.empty();
        });
    }

    // Outlives what the platform's end destroys.
    QtMainLoop loop;
    FakeDesktop desktop{loop};
    FakePlatform& platform = desktop.platform;
    bool sessionEndedWhileWatching = false;
};

void quit() {
    QCoreApplication::quit();
}

} // namespace

TEST_F(TilewrightAppTest, ShowsItsItemAndStartsToWatchForDragsWhenItHasLaunched) {
    EXPECT_EQ(run([this](TilewrightApp&) {
                  EXPECT_EQ(platform.fakeStatusItem.symbols,
                            std::vector<QString>{QStringLiteral("cup.and.saucer")});
                  EXPECT_FALSE(platform.fakeEventMonitors.monitors.empty());
                  EXPECT_EQ(platform.fakeAccessibility.trustRequests, 0);
                  quit();
              }),
              EXIT_SUCCESS);
}

TEST_F(TilewrightAppTest, AFirstLaunchWithoutTrustPromptsOnceAndItemAndSettingsWorkNormally) {
    platform.fakeAccessibility.trusted = false;
    run([this](TilewrightApp& app) {
        EXPECT_EQ(platform.fakeAccessibility.trustRequests, 1);
        platform.fakeStatusItem.click(AppKitRect{400, 876, 24, 24});
        EXPECT_TRUE(waitUntil([&] { return app.menuBarExtra().panel().isOpen(); }));
        app.settings().open();
        ASSERT_NE(app.settings().window(), nullptr);
        EXPECT_TRUE(app.settings().window()->isVisible());
        EXPECT_NE(app.settings().window()->findChild<SettingsView*>(), nullptr);
        EXPECT_EQ(platform.fakeAccessibility.trustRequests, 1);
        quit();
    });
    EXPECT_EQ(platform.fakeAccessibility.trustRequests, 1);
}

TEST_F(TilewrightAppTest, QuittingDuringASessionEndsTheSessionBeforeTheProcessExits) {
    EXPECT_EQ(run([this](TilewrightApp&) {
                  startSession();
                  quit();
              }),
              EXIT_SUCCESS);
    expectOrderlyEnd();
}

TEST_F(TilewrightAppTest, EndsInTheSameOrderOnEachTerminationSignal) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        sessionEndedWhileWatching = false;
        // The tests may have been started to ignore it, as by nohup.
        std::signal(number, SIG_DFL);
        EXPECT_EQ(run([&](TilewrightApp&) {
                      startSession();
                      EXPECT_EQ(std::raise(number), 0);
                  }),
                  EXIT_SUCCESS);
        expectOrderlyEnd();
    }
}

TEST_F(TilewrightAppTest, ClosesItsPanelWhenASignalEndsIt) {
    run([this](TilewrightApp& app) {
        platform.fakeStatusItem.click(AppKitRect{400, 876, 24, 24});
        EXPECT_TRUE(waitUntil([&] { return app.menuBarExtra().panel().isOpen(); }));
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, &app,
                         [&app] { EXPECT_FALSE(app.menuBarExtra().panel().isOpen()); });
        // Quitting closes every window by itself; a signal's way out does not.
        EXPECT_EQ(std::raise(SIGTERM), 0);
    });
}

TEST_F(TilewrightAppTest, GoesOnWhenItsLastWindowCloses) {
    constexpr int endedLater = 7;
    // As every application starts out; the test program says otherwise for all its tests.
    QApplication::setQuitOnLastWindowClosed(true);
    EXPECT_EQ(run([this](TilewrightApp& app) {
                  app.settings().open();
                  const QPointer<SettingsWindow> window = app.settings().window();
                  window->close();
                  EXPECT_TRUE(waitUntil([&] { return window.isNull(); }));
                  EXPECT_FALSE(platform.fakeEventMonitors.monitors.empty());
                  loop.post([] { QCoreApplication::exit(endedLater); });
              }),
              endedLater);
    QApplication::setQuitOnLastWindowClosed(false);
}

TEST_F(TilewrightAppTest, FollowsTheDesktopsWishForDarkColours) {
    platform.fakeAppearance.isDark = true;
    run([this](TilewrightApp&) {
        EXPECT_TRUE(look::isDark(QApplication::palette()));
        platform.fakeAppearance.changeDark(false);
        EXPECT_FALSE(look::isDark(QApplication::palette()));
        platform.fakeAppearance.changeDark(true);
        EXPECT_TRUE(look::isDark(QApplication::palette()));
        platform.fakeAppearance.changeDark(false);
        quit();
    });
}

TEST_F(TilewrightAppTest, FollowsTheDesktopsWishForReducedMotion) {
    platform.fakeAppearance.reducedMotion = true;
    run([this](TilewrightApp&) {
        EXPECT_TRUE(look::prefersReducedMotion());
        platform.fakeAppearance.changeReducedMotion(false);
        EXPECT_FALSE(look::prefersReducedMotion());
        platform.fakeAppearance.changeReducedMotion(true);
        EXPECT_TRUE(look::prefersReducedMotion());
        quit();
    });
}

} // namespace tilewright::testing
