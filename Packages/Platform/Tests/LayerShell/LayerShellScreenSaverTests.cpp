#include "WaylandFixture.h"

#include <LayerShell/LayerShellScreenSaver.h>

#include <layer-shell-server.h>

namespace tilewright::testing {
namespace {

class LayerShellScreenSaverTest : public WaylandFixture {
protected:
    /// Whether the compositor comes to be kept from idling by so many wishes.
    [[nodiscard]] bool comesTo(int wishes) {
        return waitUntil([&] { return compositor->effectiveInhibitors() == wishes; });
    }
    [[nodiscard]] bool isSuspended() { return saver.isSuspended(std::chrono::milliseconds(0)); }

    LayerShellScreenSaver saver{connection, loop};
};

TEST_F(LayerShellScreenSaverTest, ShowsOnePixelThatLetsInputThroughWhileItIsSuspended) {
    connect();
    EXPECT_FALSE(isSuspended());
    saver.suspend();
    EXPECT_TRUE(isSuspended());
    ASSERT_TRUE(comesTo(1));
    const FakeSurface& surface = *compositor->layer();
    EXPECT_EQ(surface.picture.size(), QSize(1, 1));
    EXPECT_EQ(surface.picture.pixel(0, 0), 0U);
    EXPECT_EQ(surface.wishedSize, QSize(1, 1));
    EXPECT_EQ(surface.layer, static_cast<std::uint32_t>(ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY));
    EXPECT_EQ(surface.keyboard, 0U);
    EXPECT_TRUE(surface.letsInputThrough);
    saver.resume();
    EXPECT_TRUE(comesTo(0));
    EXPECT_TRUE(waitUntil([&] { return compositor->layers().empty(); }));
    EXPECT_FALSE(isSuspended());
}

TEST_F(LayerShellScreenSaverTest, LastsUntilEachSuspensionHasBeenResumed) {
    connect();
    saver.suspend();
    saver.suspend();
    ASSERT_TRUE(comesTo(1));
    saver.resume();
    EXPECT_TRUE(isSuspended());
    EXPECT_EQ(compositor->layers().size(), 1U);
    saver.resume();
    EXPECT_TRUE(comesTo(0));
    saver.resume();
    saver.suspend();
    EXPECT_TRUE(comesTo(1));
}

TEST_F(LayerShellScreenSaverTest, BeginsAsSoonAsThereIsACompositor) {
    saver.suspend();
    EXPECT_FALSE(isSuspended());
    connect();
    EXPECT_TRUE(comesTo(1));
    EXPECT_TRUE(isSuspended());
}

TEST_F(LayerShellScreenSaverTest, CannotWithoutLayersOrWhereWishesAreNotTaken) {
    connect({.idleInhibition = 0});
    saver.suspend();
    EXPECT_FALSE(isSuspended());
    compositor.reset();
    ASSERT_TRUE(waitUntil([&] { return !connection.isReady(); }));
    connect({.layerShell = 0});
    EXPECT_FALSE(isSuspended());
}

TEST_F(LayerShellScreenSaverTest, MovesToAnotherDisplayWhenItsOwnGoes) {
    connect();
    compositor->addOutput({.name = QStringLiteral("DP-2")});
    saver.suspend();
    ASSERT_TRUE(comesTo(1));
    compositor->removeOutput(QStringLiteral("DP-1"));
    EXPECT_TRUE(waitUntil([&] {
        const FakeSurface* surface = compositor->layer();
        return surface && surface->isShown() && surface->outputName == QStringLiteral("DP-2");
    }));
    EXPECT_TRUE(comesTo(1));
}

TEST_F(LayerShellScreenSaverTest, ComesBackWithTheFirstDisplayAfterThereWasNone) {
    connect();
    saver.suspend();
    ASSERT_TRUE(comesTo(1));
    compositor->removeOutput(QStringLiteral("DP-1"));
    ASSERT_TRUE(waitUntil([&] {
        FakeSurface* surface = compositor->layer();
        return surface && !surface->isShown();
    }));
    // What a compositor does with a surface for which it has no display.
    compositor->layer()->close();
    ASSERT_TRUE(waitUntil([&] { return compositor->layers().empty(); }));
    compositor->addOutput({});
    EXPECT_TRUE(comesTo(1));
}

TEST_F(LayerShellScreenSaverTest, KeepsTheNextCompositorFromIdlingToo) {
    connect();
    saver.suspend();
    ASSERT_TRUE(comesTo(1));
    compositor.reset();
    ASSERT_TRUE(waitUntil([&] { return !connection.isReady(); }));
    EXPECT_FALSE(isSuspended());
    connect();
    EXPECT_TRUE(comesTo(1));
}

} // namespace
} // namespace tilewright::testing
