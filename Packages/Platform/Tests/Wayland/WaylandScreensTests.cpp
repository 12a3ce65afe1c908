// The displays by Qt's word, on its offscreen platform.

#include <FakeMainLoop.h>
#include <Wayland/WaylandScreens.h>

#include <QGuiApplication>
#include <gtest/gtest.h>

using namespace tilewright;
using namespace tilewright::testing;

TEST(WaylandScreens, CountFromTheLowerLeftCornerOfThePrimaryDisplay) {
    FakeMainLoop loop;
    const WaylandScreens screens(loop);
    ASSERT_FALSE(screens.all().empty());
    const QRect geometry = QGuiApplication::primaryScreen()->geometry();
    const ScreenPtr primary = screens.all().front();
    EXPECT_EQ(screens.main(), primary);
    EXPECT_EQ(primary->frame(), (AppKitRect{0, 0, static_cast<double>(geometry.width()),
                                            static_cast<double>(geometry.height())}));
    EXPECT_EQ(primary->displayID(), std::nullopt);
    EXPECT_EQ(primary->persistentUUID(), std::nullopt);
    EXPECT_EQ(primary->localizedName(), QGuiApplication::primaryScreen()->name());
    const AppKitPoint topLeft = screens.toAppKit(geometry.topLeft());
    EXPECT_EQ(topLeft, (AppKitPoint{0.5, geometry.height() - 0.5}));
    EXPECT_EQ(screens.at(topLeft), primary);
    const QtSpace space = screens.qtSpace(*primary);
    EXPECT_EQ(space.screen(), QGuiApplication::primaryScreen());
    EXPECT_EQ(space.toQt({10, geometry.height() - 30.0, 20, 20}), (QtRect{10, 10, 20, 20}));
}

TEST(WaylandScreens, KeepADisplaysObjectAndWakeForNothing) {
    FakeMainLoop loop;
    const WaylandScreens screens(loop);
    const ScreenPtr before = screens.main();
    Q_EMIT QGuiApplication::primaryScreen()->geometryChanged({});
    EXPECT_EQ(loop.activeTimerCount(), 1U);
    loop.advance(std::chrono::seconds(1));
    EXPECT_EQ(loop.activeTimerCount(), 0U);
    EXPECT_EQ(screens.main(), before) << "nothing about it has changed";
}
