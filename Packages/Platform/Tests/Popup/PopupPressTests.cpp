// What presses of the mouse do to the open panel, and which clicks on the item open it again.

#include "PopupFixture.h"

#include <QTest>

namespace tilewright::testing {

TEST_F(PopupPanelSurfaceTest, ClosesOnAPressInAnotherApplication) {
    clickItem();
    pressElsewhere({900, 500});
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty()) << "nothing is watched while closed";
}

TEST_F(PopupPanelSurfaceTest, ClosesOnAPressElsewhereThatQtTakesForItsPopups) {
    clickItem();
    movePointer({900, 500});
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {EventType::leftMouseDown, {}});
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
}

TEST_F(PopupPanelSurfaceTest, StaysOpenOnAPressInsideIt) {
    clickItem();
    movePointer(surface->window().groundGeometry().center());
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {EventType::leftMouseDown, {}});
    EXPECT_TRUE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, StaysClosedWhenTheHostPassesOnTheClickThatClosedIt) {
    clickItem();
    pressElsewhere(itemPlace.center());
    ASSERT_FALSE(isOpen());
    clickItem();
    EXPECT_FALSE(isOpen());
    clickItem();
    EXPECT_TRUE(isOpen()) << "by the next click";
}

TEST_F(PopupPanelSurfaceTest, StaysClosedWhenQtTellsOfThePressFirstAndTheHostPassesOnItsClick) {
    clickItem();
    movePointer(itemPlace.center());
    QTest::mousePress(&surface->window(), Qt::LeftButton, {}, QPoint(-200, -200));
    ASSERT_FALSE(isOpen());
    clickItem();
    EXPECT_FALSE(isOpen());
    clickItem();
    EXPECT_TRUE(isOpen()) << "by the next click";
}

TEST_F(PopupPanelSurfaceTest, OpensOnAClickThatFollowsOneThatTheHostKeptToItself) {
    clickItem();
    pressElsewhere(itemPlace.center());
    releaseElsewhere();
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global,
                                    {EventType::leftMouseDown, {}});
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, OpensOnAClickOfAnotherButtonThatFollowsOneThatTheHostKeptToItself) {
    for (const EventType type : {EventType::rightMouseDown, EventType::otherMouseDown}) {
        clickItem();
        pressElsewhere(itemPlace.center());
        releaseElsewhere();
        ASSERT_FALSE(isOpen());
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global, {type, {}});
        clickItem();
        EXPECT_TRUE(isOpen()) << int(type);
        surface->close();
    }
}

TEST_F(PopupPanelSurfaceTest, StaysClosedWhenTheHostPassesOnTheClickOfAnotherButtonThatClosedIt) {
    clickItem();
    movePointer(itemPlace.center());
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global,
                                    {EventType::rightMouseDown, {}});
    ASSERT_FALSE(isOpen());
    clickItem();
    EXPECT_FALSE(isOpen());
    clickItem();
    EXPECT_TRUE(isOpen()) << "by the next click";
}

TEST_F(PopupPanelSurfaceTest, OpensOnAClickThatFollowsOneWhoseReleaseWasHeardBeforeThePanelClosed) {
    clickItem();
    movePointer(itemPlace.center());
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {EventType::leftMouseDown, {}});
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {EventType::leftMouseUp, {}});
    // What Qt does with the press, late.
    QTest::mousePress(&surface->window(), Qt::LeftButton, {}, QPoint(-200, -200));
    ASSERT_FALSE(isOpen());
    platform.fakeMainLoop.runPosted();
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {EventType::leftMouseDown, {}});
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, OpensOnAClickThatFollowsTheClosingOneBeforeTheLoopTurns) {
    clickItem();
    movePointer(itemPlace.center());
    for (const EventType type :
         {EventType::leftMouseDown, EventType::leftMouseUp, EventType::leftMouseDown})
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {type, {}});
    ASSERT_FALSE(isOpen());
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, OpensOnAClickAfterAPressElsewhereClosedIt) {
    clickItem();
    pressElsewhere({900, 500});
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, ForgetsAPressOnTheItemAfterAWhile) {
    clickItem();
    pressElsewhere(itemPlace.center());
    platform.fakeMainLoop.advance(std::chrono::seconds(5));
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, StaysOpenOnAPressThatQtBringsToItsGround) {
    clickItem();
    const QRect ground = surface->window().rect();
    QTest::mousePress(&surface->window(), Qt::LeftButton, {}, ground.topLeft());
    QTest::mousePress(&surface->window(), Qt::LeftButton, {}, ground.bottomRight());
    EXPECT_TRUE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, OffersItsContentAContextMenuByTheRightButton) {
    clickItem();
    QPoint asked;
    button->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(button, &QWidget::customContextMenuRequested, [&](QPoint at) { asked = at; });
    const QPoint place(7, 9);
    QTest::mousePress(button, Qt::LeftButton, {}, place);
    EXPECT_TRUE(asked.isNull());
    QTest::mousePress(button, Qt::RightButton, {}, place);
    EXPECT_EQ(asked, place);
    EXPECT_TRUE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, WatchesPressesOnceHoweverOftenItIsOpened) {
    for (int opening = 0; opening < 3; ++opening) {
        // Closed again before the watch of the first opening has begun.
        surface->open(std::nullopt);
        surface->close();
        surface->open(std::nullopt);
        platform.fakeMainLoop.runPosted();
        EXPECT_EQ(platform.fakeEventMonitors.monitors.size(), 2U) << "of either kind";
        surface->close();
        EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
    }
}

TEST_F(PopupPanelSurfaceTest, IsNotDismissedByThePressThatOpenedIt) {
    surface->open(std::nullopt);
    movePointer({900, 500});
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global,
                                    {EventType::leftMouseDown, {}});
    EXPECT_TRUE(isOpen());
    pressElsewhere({900, 500});
    EXPECT_FALSE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, ClosesOnEachButtonThatIsPressedElsewhere) {
    for (const EventType type :
         {EventType::leftMouseDown, EventType::rightMouseDown, EventType::otherMouseDown}) {
        clickItem();
        movePointer({900, 500});
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global, {type, {}});
        EXPECT_FALSE(isOpen()) << int(type);
    }
}

} // namespace tilewright::testing
