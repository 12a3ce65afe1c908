// The backend as the program opens it.

#include "FakeAppKit.h"
#include "FakeMacSystem.h"
#include "MacTestPlatform.h"

#include <DesktopBackend.h>
#include <KeepAwake/KeepAwakeManager.h>
#include <Tilewright/SnapController.h>
#include <Tilewright/TilewrightApp.h>

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;

namespace {

struct OpenedBackend {
    OpenedBackend() {
        appKit.screens = {makeFacts({0, 0, 1440, 900}, 1, 25)};
        appKit.mainScreen = 0;
        appKit.frontmost = 7;
        platform = DesktopBackend::find()->open();
    }
    FakeMacSystem system;
    FakeAppKit appKit;
    std::unique_ptr<Platform> platform;
};

} // namespace

TEST(MacPlatform, IsTheBackendOfAProgramBuiltForMacOS) {
    EXPECT_TRUE(DesktopBackend::find()->qtArguments().empty()) << "Qt knows its desktop";
    OpenedBackend backend;
    ASSERT_NE(backend.platform, nullptr);
    Platform& platform = *backend.platform;
    backend.appKit.mouse = {3, 4};
    EXPECT_EQ(platform.pointer.location(), (AppKitPoint{3, 4}));
    EXPECT_EQ(platform.screens.all().size(), 1U);
    EXPECT_TRUE(platform.accessibility.isTrusted());
    EXPECT_EQ(platform.applicationSupport.folder(), backend.appKit.applicationSupport.path());
    EXPECT_TRUE(platform.appearance.blendsWindows());
    for (const auto key : {ModifierFlag::option, ModifierFlag::command})
        EXPECT_EQ(platform.keyNames.localName(key), std::nullopt);
    EXPECT_FALSE(backend.appKit.statusItem);
    EXPECT_EQ(&platform.statusItem(), &platform.statusItem());
    EXPECT_TRUE(backend.appKit.statusItem);
}

TEST(MacPlatform, HasQtLeaveTheKeyboardWhereItIsAtTheStart) {
    qunsetenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM");
    const auto backend = DesktopBackend::find();
    // Before Qt's application object is made.
    EXPECT_FALSE(qEnvironmentVariableIsEmpty("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM"));
}

TEST(MacPlatform, AsksARunningInstanceForItsPanelInsteadOfStartingAnother) {
    OpenedBackend backend;
    backend.appKit.instances = {{getpid(), 20}, {getpid() + 1, 10}};
    EXPECT_EQ(backend.platform->instanceActivation.claim(), InstanceActivation::Claim::another);
    EXPECT_EQ(backend.appKit.panelRequests, 1);
}

TEST(MacPlatform, CarriesTheWholeProgramFromItsStartToItsEnd) {
    OpenedBackend backend;
    backend.system.isTrusted = false;
    ASSERT_EQ(backend.platform->instanceActivation.claim(), InstanceActivation::Claim::first);
    const Platform::Installation installation(*backend.platform);
    {
        TilewrightApp app;
        ASSERT_TRUE(backend.appKit.statusItem);
        EXPECT_FALSE(backend.appKit.statusItem->images.empty());
        EXPECT_FALSE(backend.appKit.statusItem->accessibleName.isEmpty());
        // At the right of the menu bar, which is the uppermost 25 points.
        backend.appKit.statusItem->frame = AppKitRect{1200, 875, 24, 25};
        bool sawMonitors = false;
        bool sawPanel = false;
        bool sawSettings = false;
        const auto useIt = [&] {
            sawMonitors = backend.appKit.monitors.size() == 2;
            backend.appKit.statusItem->clicked();
            for (QWidget* widget : QApplication::topLevelWidgets())
                sawPanel = sawPanel || (widget->objectName() == u"panel"_s && widget->isVisible());
            KeepAwakeManager::shared().activate(KeepAwakeSession::indefinite());
            app.menuBarExtra().panel().close();
            app.settings().open();
            sawSettings = app.settings().window() && app.settings().window()->isVisible();
            backend.appKit.frontmost = getpid();
            // In later turns than the panel went in.
            backend.platform->mainLoop.post([&] {
                app.settings().window()->close();
                backend.platform->mainLoop.post([] { QApplication::exit(0); });
            });
        };
        // After what the program itself posts when it starts to run.
        backend.platform->mainLoop.post([&] { backend.platform->mainLoop.post(useIt); });
        EXPECT_EQ(app.run(), 0);
        EXPECT_TRUE(sawMonitors);
        EXPECT_TRUE(sawPanel);
        EXPECT_TRUE(sawSettings);
        EXPECT_EQ(backend.appKit.broughtForward, std::vector<ProcessID>{7});
        // Asked for once, at the start.
        EXPECT_EQ(backend.system.prompts.size(), 1U);
        EXPECT_TRUE(backend.system.assertions.empty());
        EXPECT_TRUE(backend.appKit.monitors.empty());
    }
}
