#include <FakePlatform.h>
#include <Popup/PopupPanelSurface.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

/// A margin where the desktop blends windows, none elsewhere, and nothing painted.
class PlainChrome final : public PanelChrome {
public:
    static constexpr int margin = 10;

    QMargins margins(PanelRendering rendering) const override {
        return rendering == PanelRendering::translucent ? QMargins(margin, margin, margin, margin)
                                                        : QMargins();
    }
    void paint(QPainter&, const QRect& surface, const QPalette&,
               PanelRendering rendering) override {
        paintings.emplace_back(surface, rendering);
    }

    std::vector<std::pair<QRect, PanelRendering>> paintings;
};

/// The panel over a stand-in for its content, on Qt's offscreen screen.
struct PopupPanelSurfaceTest : public ::testing::Test {
    PopupPanelSurfaceTest() {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const AppKitRect frame{0, 0, double(screen.width()), double(screen.height())};
        AppKitRect visible = frame;
        visible.height -= barHeight;
        FakeScreen::Values values;
        values.frame = frame;
        values.visibleFrame = visible;
        platform.fakeScreens.setScreens({makeScreen(values)});
        movePointer(itemPlace.center());
        auto chrome = std::make_unique<PlainChrome>();
        paintings = &chrome->paintings;
        surface = std::make_unique<PopupPanelSurface>(
            platform, [this](auto then) { platform.fakeMainLoop.post(std::move(then)); },
            [this] { return makeView(); }, std::move(chrome));
        QObject::connect(surface.get(), &PanelSurface::opened, [this] { ++openings; });
        QObject::connect(surface.get(), &PanelSurface::dismissed,
                         [this](PanelDismissal why) { dismissals.push_back(why); });
    }
    ~PopupPanelSurfaceTest() override { surface.reset(); }

    std::unique_ptr<QWidget> makeView() {
        ++viewsMade;
        auto view = std::make_unique<QWidget>();
        view->setFixedWidth(300);
        auto* layout = new QVBoxLayout(view.get());
        button = new QPushButton(QStringLiteral("Button"));
        button->setMinimumHeight(40);
        layout->addWidget(button);
        return view;
    }
    void movePointer(QPoint to) {
        const double height = platform.fakeScreens.all().front()->frame().height;
        platform.fakePointer.at = {to.x() + 0.5, height - (to.y() + 0.5)};
    }
    void clickItem() {
        const double height = platform.fakeScreens.all().front()->frame().height;
        surface->toggle(AppKitRect{double(itemPlace.x()),
                                   height - itemPlace.y() - itemPlace.height(),
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
    [[nodiscard]] bool isOpen() const { return surface->isOpen(); }

    static constexpr int barHeight = 30;
    const QRect itemPlace{400, 0, 24, barHeight};
    FakeDesktop desktop;
    FakePlatform& platform = desktop.platform;
    std::unique_ptr<PopupPanelSurface> surface;
    int viewsMade = 0;
    int openings = 0;
    std::vector<PanelDismissal> dismissals;
    std::vector<std::pair<QRect, PanelRendering>>* paintings = nullptr;
    QPushButton* button = nullptr;
};

} // namespace

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

TEST_F(PopupPanelSurfaceTest, ClosesWhenAnotherWindowBecomesActive) {
    clickItem();
    Q_EMIT platform.fakeWorkspace.activeWindowChanged();
    EXPECT_FALSE(isOpen());
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

TEST_F(PopupPanelSurfaceTest, StaysOpenOnAPressThatQtBringsToItsGround) {
    clickItem();
    const QRect ground = surface->window().rect();
    QTest::mousePress(&surface->window(), Qt::LeftButton, {}, ground.topLeft());
    QTest::mousePress(&surface->window(), Qt::LeftButton, {}, ground.bottomRight());
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

TEST_F(PopupPanelSurfaceTest, WatchesNothingWhereItWasClosedBeforeItsWatchBegan) {
    surface->open(std::nullopt);
    surface->close();
    platform.fakeMainLoop.runPosted();
    EXPECT_TRUE(platform.fakeEventMonitors.monitors.empty());
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
