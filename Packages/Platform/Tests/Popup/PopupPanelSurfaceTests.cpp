#include "PopupFixture.h"

#include <QAccessible>
#include <QIcon>
#include <QPixmap>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

namespace tilewright::testing {

TEST_F(PopupPanelSurfaceTest, OpensUnderTheItemOnAClick) {
    EXPECT_FALSE(isOpen());
    clickItem();
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(openings, 1);
    const QRect ground = surface->window().groundGeometry();
    EXPECT_EQ(ground.width(), 300);
    EXPECT_GE(ground.top(), itemPlace.bottom());
    EXPECT_NEAR(ground.center().x(), itemPlace.center().x(), 1);
}

TEST_F(PopupPanelSurfaceTest, HasTheProgramsIconDrawnForNobody) {
    QPixmap icon(64, 64);
    icon.fill(Qt::red);
    QGuiApplication::setWindowIcon(icon);
    clickItem();
    EXPECT_EQ(surface->window().windowHandle()->icon().actualSize(icon.size()), QSize(1, 1));
    QGuiApplication::setWindowIcon({});
}

TEST_F(PopupPanelSurfaceTest, ClosesOnASecondClick) {
    clickItem();
    clickItem();
    EXPECT_FALSE(isOpen());
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, MakesItsContentNewAtEachOpening) {
    clickItem();
    EXPECT_EQ(viewsMade, 1);
    const QPointer<QWidget> first = surface->window().view();
    clickItem();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull()) << "nothing of a closed panel is kept";
    clickItem();
    EXPECT_EQ(viewsMade, 2);
}

TEST_F(PopupPanelSurfaceTest, TellsTheApplicationOfItsFocusOnceHoweverOftenItWasOpened) {
    for (int opening = 0; opening < 4; ++opening) {
        if (isOpen())
            surface->close();
        clickItem();
        ASSERT_TRUE(isOpen());
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return QGuiApplication::focusWindow() == surface->window().windowHandle(); }));
    }
    QSignalSpy told(qApp, &QGuiApplication::focusObjectChanged);
    button->setFocus();
    EXPECT_EQ(told.size(), 1) << "a connection is left by each closing";
}

TEST_F(PopupPanelSurfaceTest, ClosesOnEscape) {
    clickItem();
    QTest::keyClick(&surface->window(), Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, ClosesOnEscapeWhileAControlHasTheKeyboard) {
    clickItem();
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, ReachesItsControlsByTheTabKey) {
    clickItem();
    QTest::keyClick(&surface->window(), Qt::Key_Tab);
    EXPECT_TRUE(button->hasFocus());
}

TEST_F(PopupPanelSurfaceTest, ClosesWhenAnotherWindowBecomesActive) {
    clickItem();
    Q_EMIT platform.fakeWorkspace.activeWindowChanged();
    EXPECT_FALSE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, OpensByThePointerWhereTheHostTellsNoPlace) {
    movePointer({500, 300});
    surface->toggle(std::nullopt);
    const QRect ground = surface->window().groundGeometry();
    EXPECT_NEAR(ground.center().x(), 500, 1);
    EXPECT_NEAR(ground.top(), 300, 8);
}

TEST_F(PopupPanelSurfaceTest, OpensOnTheScreenThatHoldsThePointWhichIsAllThatIsKnown) {
    const QRect left(0, 0, 400, 400);
    const QRect right(400, 0, 400, 400);
    const QRect below(0, 400, 400, 400);
    setScreens({left, right, below});
    const auto groundFor = [&](QPoint pixel) {
        surface->toggle(AppKitRect{pixel.x() + 0.5, 400 - (pixel.y() + 0.5), 0, 0});
        const QRect ground = surface->window().groundGeometry();
        surface->close();
        return ground;
    };
    EXPECT_TRUE(left.contains(groundFor({399, 200})));
    EXPECT_TRUE(right.contains(groundFor({400, 200}))) << "its first column";
    EXPECT_TRUE(left.contains(groundFor({200, 399})));
    EXPECT_TRUE(below.contains(groundFor({200, 400}))) << "its first row";
    EXPECT_TRUE(right.contains(groundFor({900, 200}))) << "the nearest";
}

TEST_F(PopupPanelSurfaceTest, OpensUnderTheItemWhereQtScales) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        platform.fakeScreens.qtScale = scale;
        const double height = 800 * scale;
        FakeScreen::Values values;
        values.frame = {0, 0, 800 * scale, height};
        values.visibleFrame = {0, 0, 800 * scale, height - 30};
        platform.fakeScreens.setScreens({makeScreen(values)});
        const AppKitRect item{300, height - 30, 24, 30};
        surface->toggle(item);
        const QRect ground = surface->window().groundGeometry();
        EXPECT_NEAR(ground.x() + ground.width() / 2.0, 312 / scale, 1) << scale;
        EXPECT_GE(ground.top() * scale, 30) << scale;
        EXPECT_LE(ground.top() * scale, 30 + 6 * scale) << scale;

        // The pointer in the panel, and just below the item, which is above the panel.
        platform.fakePointer.at = {312, height - (ground.top() + 1) * scale};
        EXPECT_TRUE(surface->window().isUnderPointer()) << scale;
        platform.fakePointer.at = {312, height - (ground.top() - 1) * scale};
        EXPECT_FALSE(surface->window().isUnderPointer()) << scale;
        surface->close();
    }
}

TEST_F(PopupPanelSurfaceTest, OpensByThePointerWithoutAnAnchorAndStaysOpenThen) {
    movePointer({500, 300});
    surface->open(std::nullopt);
    ASSERT_TRUE(isOpen());
    EXPECT_NEAR(surface->window().groundGeometry().center().x(), 500, 1);
    surface->open(std::nullopt);
    EXPECT_TRUE(isOpen()) << "it stays open";
}

TEST_F(PopupPanelSurfaceTest, FollowsItsContentsHeight) {
    clickItem();
    const int before = surface->window().groundGeometry().height();
    button->setMinimumHeight(140);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(surface->window().groundGeometry().height(), before + 100);
}

TEST_F(PopupPanelSurfaceTest, KeepsItsTopEdgeAndTheRoomToGrowAboveABarAtTheBottom) {
    moveBarDown();
    roomToGrow = 100;
    clickItem();
    const QRect before = ground();
    EXPECT_EQ(before.bottom() + 1 + 100, itemPlace.top() - 4);
    setButtonHeight(140);
    EXPECT_EQ(ground(), before.adjusted(0, 0, 0, 100));
    setButtonHeight(60);
    EXPECT_EQ(ground(), before.adjusted(0, 0, 0, 20));
    clickItem();
    roomToGrow = 0;
    clickItem();
    EXPECT_EQ(ground().bottom() + 1, itemPlace.top() - 4) << "no room where none is asked for";
}

TEST_F(PopupPanelSurfaceTest, GrowsAwayFromWhatItOpenedAtBeyondWhatWasForeseen) {
    movePointer({400, 500});
    surface->toggle(std::nullopt);
    const QRect before = ground();
    ASSERT_LE(before.bottom(), 500 - 4);
    setButtonHeight(140);
    EXPECT_EQ(ground(), before.adjusted(0, -100, 0, 0));
}

TEST_F(PopupPanelSurfaceTest, IsNoHigherThanItsScreenForTheRoomToGrow) {
    moveBarDown();
    roomToGrow = 5000;
    clickItem();
    EXPECT_EQ(ground().top(), 4);
    EXPECT_LT(ground().height(), 100);
}

TEST_F(PopupPanelSurfaceTest, FindsANewTopEdgeOnDisplaysThatChange) {
    moveBarDown();
    FakeScreen::Values values;
    values.frame = platform.fakeScreens.all().front()->frame();
    values.visibleFrame = values.frame;
    values.visibleFrame->y += 200;
    values.visibleFrame->height -= 200;
    platform.fakeScreens.change({makeScreen(values)});
    clickItem();
    EXPECT_LT(ground().bottom(), values.frame.height - 200);
    values.visibleFrame = values.frame;
    platform.fakeScreens.change({makeScreen(values)});
    EXPECT_EQ(ground().bottom() + 1, itemPlace.top() - 4);
}

TEST_F(PopupPanelSurfaceTest, IsNeverTallerThanItsScreen) {
    clickItem();
    button->setMinimumHeight(5000);
    QCoreApplication::sendPostedEvents();
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    EXPECT_TRUE(screen.contains(surface->window().groundGeometry()));
}

TEST_F(PopupPanelSurfaceTest, LeavesTheDesktopAsItWasWithoutScreens) {
    platform.fakeScreens.setScreens({});
    surface->toggle(std::nullopt);
    EXPECT_TRUE(isOpen());
    surface->close();
    EXPECT_FALSE(isOpen());
}

TEST_F(PopupPanelSurfaceTest, TellsWhyItWentOnceEachTime) {
    using enum PanelDismissal;
    clickItem();
    clickItem();
    clickItem();
    surface->close();
    surface->close();
    EXPECT_EQ(std::exchange(dismissals, {}), (std::vector{request, request}));
    clickItem();
    QTest::keyClick(&surface->window(), Qt::Key_Escape);
    EXPECT_EQ(std::exchange(dismissals, {}), std::vector{escape});
    clickItem();
    Q_EMIT platform.fakeWorkspace.activeWindowChanged();
    EXPECT_EQ(std::exchange(dismissals, {}), std::vector{anotherWindow});
    clickItem();
    surface->window().hide();
    EXPECT_EQ(std::exchange(dismissals, {}), std::vector{desktop});
    clickItem();
    pressElsewhere({900, 500});
    EXPECT_EQ(std::exchange(dismissals, {}), std::vector{pressOutside});
    clickItem();
    QTest::mousePress(&surface->window(), Qt::LeftButton, {}, QPoint(-200, 200));
    EXPECT_EQ(std::exchange(dismissals, {}), std::vector{pressOutside});
    EXPECT_EQ(openings, 7);
}

TEST_F(PopupPanelSurfaceTest, WatchesNothingWhereItWasClosedBeforeItsWatchBegan) {
    surface->open(std::nullopt);
    surface->close();
    platform.fakeMainLoop.runPosted();
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
}

TEST_F(PopupPanelSurfaceTest, HasItsChromeAroundTheContent) {
    // Twice the same size at the end: the content is a new one all the same.
    for (const bool blends : {false, true, true}) {
        platform.fakeAppearance.blends = blends;
        clickItem();
        const QRect window = surface->window().geometry();
        const int margin = blends ? PlainChrome::margin : 0;
        EXPECT_EQ(surface->window().groundGeometry(),
                  window.adjusted(margin, margin, -margin, -margin));
        EXPECT_EQ(surface->window().view()->geometry(),
                  QRect(QPoint(), window.size()).adjusted(margin, margin, -margin, -margin));
        EXPECT_EQ(surface->window().view()->width(), 300);
        paintings->clear();
        surface->window().grab();
        ASSERT_FALSE(paintings->empty());
        EXPECT_EQ(paintings->front().first, QRect(QPoint(), window.size()));
        EXPECT_EQ(paintings->front().second,
                  blends ? PanelRendering::translucent : PanelRendering::opaque);
        clickItem();
    }
}

TEST_F(PopupPanelSurfaceTest, FollowsItsDisplays) {
    clickItem();
    FakeScreen::Values values;
    values.frame = {0, 0, 400, 400};
    platform.fakeScreens.change({makeScreen(values)});
    EXPECT_TRUE(QRect(0, 0, 400, 400).contains(surface->window().groundGeometry()));
}

TEST_F(PopupPanelSurfaceTest, IsADialogToAssistiveTools) {
    clickItem();
    const QAccessibleInterface* panel = QAccessible::queryAccessibleInterface(&surface->window());
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->role(), QAccessible::Dialog);
    EXPECT_EQ(panel->text(QAccessible::Name), QStringLiteral("Tilewright"));
}

} // namespace tilewright::testing
