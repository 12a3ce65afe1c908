#include <FakePlatform.h>
#include <Tilewright/MenuBarExtra.h>

#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

/// The panel over a stand-in for its content, on Qt's offscreen screen.
struct MenuBarExtraTest : public ::testing::Test {
    MenuBarExtraTest() {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const AppKitRect frame{0, 0, double(screen.width()), double(screen.height())};
        AppKitRect visible = frame;
        visible.height -= barHeight;
        FakeScreen::Values values;
        values.frame = frame;
        values.visibleFrame = visible;
        platform.fakeScreens.setScreens({makeScreen(values)});
        movePointer(itemPlace.center());
        extra = std::make_unique<MenuBarExtra>([this] {
            ++viewsMade;
            auto view = std::make_unique<QWidget>();
            view->setFixedWidth(300);
            auto* layout = new QVBoxLayout(view.get());
            button = new QPushButton(QStringLiteral("Button"));
            button->setMinimumHeight(40);
            layout->addWidget(button);
            return view;
        });
    }
    ~MenuBarExtraTest() override { extra.reset(); }

    void movePointer(QPoint to) {
        const double height = platform.fakeScreens.all().front()->frame().height;
        platform.fakePointer.at = {to.x() + 0.5, height - (to.y() + 0.5)};
    }
    void clickItem() {
        const double height = platform.fakeScreens.all().front()->frame().height;
        platform.fakeStatusItem.click(
            AppKitRect{double(itemPlace.x()), height - itemPlace.y() - itemPlace.height(),
                       double(itemPlace.width()), double(itemPlace.height())});
        platform.fakeMainLoop.runPosted();
    }
    /// Screens side by side and one above the other, each where Qt has it; the first is
    /// the primary one, at Qt's origin.
    void setScreens(const std::vector<QRect>& places) {
        std::vector<ScreenPtr> screens;
        screens.reserve(places.size());
        for (const QRect& place : places) {
            FakeScreen::Values values;
            values.frame = {double(place.x()),
                            double(places.front().height() - place.y() - place.height()),
                            double(place.width()), double(place.height())};
            screens.push_back(makeScreen(values));
        }
        platform.fakeScreens.setScreens(std::move(screens));
    }
    /// A press in another application, as the raw events tell of it.
    void pressElsewhere(QPoint at) {
        movePointer(at);
        platform.fakeMainLoop.runPosted();
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global,
                                        {EventType::leftMouseDown, {}});
    }
    void releaseElsewhere() {
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global,
                                        {EventType::leftMouseUp, {}});
    }
    [[nodiscard]] bool isOpen() const { return extra->panel().isVisible(); }

    static constexpr int barHeight = 30;
    const QRect itemPlace{400, 0, 24, barHeight};
    FakeDesktop desktop;
    FakePlatform& platform = desktop.platform;
    std::unique_ptr<MenuBarExtra> extra;
    int viewsMade = 0;
    QPushButton* button = nullptr;
};

} // namespace

TEST_F(MenuBarExtraTest, OpensThePanelUnderTheItemOnAClick) {
    EXPECT_FALSE(isOpen());
    clickItem();
    ASSERT_TRUE(isOpen());
    const QRect ground = extra->panel().groundGeometry();
    EXPECT_EQ(ground.width(), 300);
    EXPECT_GE(ground.top(), itemPlace.bottom());
    EXPECT_NEAR(ground.center().x(), itemPlace.center().x(), 1);
}

TEST_F(MenuBarExtraTest, ClosesThePanelOnASecondClick) {
    clickItem();
    clickItem();
    EXPECT_FALSE(isOpen());
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(MenuBarExtraTest, MakesItsContentNewAtEachOpening) {
    clickItem();
    EXPECT_EQ(viewsMade, 1);
    const QPointer<QWidget> first = extra->panel().view();
    clickItem();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull()) << "nothing of a closed panel is kept";
    clickItem();
    EXPECT_EQ(viewsMade, 2);
}

TEST_F(MenuBarExtraTest, TellsTheApplicationOfItsFocusOnceHoweverOftenItWasOpened) {
    for (int opening = 0; opening < 4; ++opening) {
        if (isOpen())
            extra->closePanel();
        clickItem();
        ASSERT_TRUE(isOpen());
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return QGuiApplication::focusWindow() == extra->panel().windowHandle(); }));
    }
    QSignalSpy told(qApp, &QGuiApplication::focusObjectChanged);
    button->setFocus();
    EXPECT_EQ(told.size(), 1) << "a connection is left by each closing";
}

TEST_F(MenuBarExtraTest, ClosesOnEscape) {
    clickItem();
    QTest::keyClick(&extra->panel(), Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
}

TEST_F(MenuBarExtraTest, ClosesOnEscapeWhileAControlHasTheKeyboard) {
    clickItem();
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
}

TEST_F(MenuBarExtraTest, ReachesItsControlsByTheTabKey) {
    clickItem();
    QTest::keyClick(&extra->panel(), Qt::Key_Tab);
    EXPECT_TRUE(button->hasFocus());
}

TEST_F(MenuBarExtraTest, ClosesOnAPressInAnotherApplication) {
    clickItem();
    pressElsewhere({900, 500});
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty()) << "nothing is watched while closed";
}

TEST_F(MenuBarExtraTest, ClosesOnAPressElsewhereThatQtTakesForItsPopups) {
    clickItem();
    movePointer({900, 500});
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {EventType::leftMouseDown, {}});
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
}

TEST_F(MenuBarExtraTest, StaysOpenOnAPressInsideIt) {
    clickItem();
    movePointer(extra->panel().groundGeometry().center());
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {EventType::leftMouseDown, {}});
    EXPECT_TRUE(isOpen());
}

TEST_F(MenuBarExtraTest, ClosesWhenAnotherWindowBecomesActive) {
    clickItem();
    Q_EMIT platform.fakeWorkspace.activeWindowChanged();
    EXPECT_FALSE(isOpen());
}

TEST_F(MenuBarExtraTest, StaysClosedWhenTheHostPassesOnTheClickThatClosedIt) {
    clickItem();
    pressElsewhere(itemPlace.center());
    ASSERT_FALSE(isOpen());
    clickItem();
    EXPECT_FALSE(isOpen());
    clickItem();
    EXPECT_TRUE(isOpen()) << "by the next click";
}

TEST_F(MenuBarExtraTest, OpensOnAClickThatFollowsOneThatTheHostKeptToItself) {
    clickItem();
    pressElsewhere(itemPlace.center());
    releaseElsewhere();
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global,
                                    {EventType::leftMouseDown, {}});
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(MenuBarExtraTest, OpensOnAClickThatFollowsOneWhoseReleaseWasHeardBeforeThePanelClosed) {
    clickItem();
    movePointer(itemPlace.center());
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {EventType::leftMouseDown, {}});
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {EventType::leftMouseUp, {}});
    // What Qt does with the press, late.
    QTest::mousePress(&extra->panel(), Qt::LeftButton, {}, QPoint(-200, -200));
    ASSERT_FALSE(isOpen());
    platform.fakeMainLoop.runPosted();
    platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {EventType::leftMouseDown, {}});
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(MenuBarExtraTest, OpensOnAClickThatFollowsTheClosingOneBeforeTheLoopTurns) {
    clickItem();
    movePointer(itemPlace.center());
    for (const EventType type :
         {EventType::leftMouseDown, EventType::leftMouseUp, EventType::leftMouseDown})
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::local, {type, {}});
    ASSERT_FALSE(isOpen());
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(MenuBarExtraTest, OpensOnAClickAfterAPressElsewhereClosedIt) {
    clickItem();
    pressElsewhere({900, 500});
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(MenuBarExtraTest, ForgetsAPressOnTheItemAfterAWhile) {
    clickItem();
    pressElsewhere(itemPlace.center());
    platform.fakeMainLoop.advance(std::chrono::seconds(5));
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
    clickItem();
    EXPECT_TRUE(isOpen());
}

TEST_F(MenuBarExtraTest, OpensByThePointerWhereTheHostTellsNoPlace) {
    movePointer({500, 300});
    platform.fakeStatusItem.click(std::nullopt);
    const QRect ground = extra->panel().groundGeometry();
    EXPECT_NEAR(ground.center().x(), 500, 1);
    EXPECT_NEAR(ground.top(), 300, 8);
}

TEST_F(MenuBarExtraTest, OpensOnTheScreenThatHoldsThePointWhichIsAllThatIsKnown) {
    const QRect left(0, 0, 400, 400);
    const QRect right(400, 0, 400, 400);
    const QRect below(0, 400, 400, 400);
    setScreens({left, right, below});
    const auto groundFor = [&](QPoint pixel) {
        platform.fakeStatusItem.click(AppKitRect{pixel.x() + 0.5, 400 - (pixel.y() + 0.5), 0, 0});
        const QRect ground = extra->panel().groundGeometry();
        extra->closePanel();
        return ground;
    };
    EXPECT_TRUE(left.contains(groundFor({399, 200})));
    EXPECT_TRUE(right.contains(groundFor({400, 200}))) << "its first column";
    EXPECT_TRUE(left.contains(groundFor({200, 399})));
    EXPECT_TRUE(below.contains(groundFor({200, 400}))) << "its first row";
    EXPECT_TRUE(right.contains(groundFor({900, 200}))) << "the nearest";
}

TEST_F(MenuBarExtraTest, OpensUnderTheItemWhereQtScales) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        platform.fakeScreens.qtScale = scale;
        const double height = 800 * scale;
        FakeScreen::Values values;
        values.frame = {0, 0, 800 * scale, height};
        values.visibleFrame = {0, 0, 800 * scale, height - 30};
        platform.fakeScreens.setScreens({makeScreen(values)});
        const AppKitRect item{300, height - 30, 24, 30};
        platform.fakeStatusItem.click(item);
        const QRect ground = extra->panel().groundGeometry();
        EXPECT_NEAR(ground.x() + ground.width() / 2.0, 312 / scale, 1) << scale;
        EXPECT_GE(ground.top() * scale, 30) << scale;
        EXPECT_LE(ground.top() * scale, 30 + 6 * scale) << scale;

        // The pointer in the panel, and just below the item, which is above the panel.
        platform.fakePointer.at = {312, height - (ground.top() + 1) * scale};
        EXPECT_TRUE(extra->panel().isUnderPointer()) << scale;
        platform.fakePointer.at = {312, height - (ground.top() - 1) * scale};
        EXPECT_FALSE(extra->panel().isUnderPointer()) << scale;
        extra->closePanel();
    }
}

TEST_F(MenuBarExtraTest, OpensByThePointerWhenTheProgramIsStartedAgain) {
    movePointer({500, 300});
    Q_EMIT platform.fakeInstanceActivation.activationRequested();
    ASSERT_TRUE(isOpen());
    EXPECT_NEAR(extra->panel().groundGeometry().center().x(), 500, 1);
    Q_EMIT platform.fakeInstanceActivation.activationRequested();
    EXPECT_TRUE(isOpen()) << "it stays open";
}

TEST_F(MenuBarExtraTest, FollowsItsContentsHeight) {
    clickItem();
    const int before = extra->panel().groundGeometry().height();
    button->setMinimumHeight(140);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(extra->panel().groundGeometry().height(), before + 100);
}

TEST_F(MenuBarExtraTest, IsNeverTallerThanItsScreen) {
    clickItem();
    button->setMinimumHeight(5000);
    QCoreApplication::sendPostedEvents();
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    EXPECT_TRUE(screen.contains(extra->panel().groundGeometry()));
}

TEST_F(MenuBarExtraTest, LeavesTheDesktopAsItWasWithoutScreens) {
    platform.fakeScreens.setScreens({});
    platform.fakeStatusItem.click(std::nullopt);
    EXPECT_TRUE(isOpen());
    extra->closePanel();
    EXPECT_FALSE(isOpen());
}

} // namespace tilewright::testing
