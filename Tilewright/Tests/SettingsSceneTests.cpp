#include <FakePlatform.h>
#include <Tilewright/SettingsWindow.h>

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

/// Wants 520 x 460 points, and notes how many it may have.
class PlainContent final : public SettingsContent {
public:
    PlainContent() { setFixedSize(520, 460); }

    void limitHeight(int most) override {
        mostHeight = most;
        setFixedHeight(std::min(460, most));
    }

    int mostHeight = 0;
};

struct SettingsSceneTest : public ::testing::Test {
    FakeDesktop desktop;
    int viewsMade = 0;
    PlainContent* content = nullptr;
    SettingsScene scene{[this] {
        ++viewsMade;
        auto made = std::make_unique<PlainContent>();
        content = made.get();
        return made;
    }};
};

} // namespace

TEST_F(SettingsSceneTest, OpensAWindowAsLargeAsItsContent) {
    EXPECT_EQ(scene.window(), nullptr);
    scene.open();
    ASSERT_NE(scene.window(), nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(scene.window()));
    EXPECT_EQ(scene.window()->size(), QSize(520, 460));
    EXPECT_EQ(scene.window()->minimumSize(), scene.window()->maximumSize());
}

TEST_F(SettingsSceneTest, BringsTheOpenWindowForwardInsteadOfOpeningASecondOne) {
    scene.open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(scene.window()));
    const QWidget* first = scene.window();
    scene.window()->showMinimized();
    const int before = desktop.platform.fakeWorkspace.activations;
    scene.open();
    EXPECT_EQ(scene.window(), first);
    EXPECT_EQ(viewsMade, 1);
    EXPECT_FALSE(scene.window()->isMinimized());
    EXPECT_TRUE(scene.window()->isActiveWindow());
    EXPECT_GT(desktop.platform.fakeWorkspace.activations, before);
}

TEST_F(SettingsSceneTest, ComesBackWholeFromADisplayThatIsGone) {
    scene.open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(scene.window()));
    const QRect display = scene.window()->screen()->geometry();
    const QRect room = scene.window()->screen()->availableGeometry();
    for (const QPoint gone : {QPoint(display.right() + 500, 40), QPoint(-2000, -2000),
                              QPoint(display.right() - 100, display.bottom() - 20)}) {
        scene.window()->move(gone);
        QApplication::processEvents();
        scene.open();
        EXPECT_TRUE(room.contains(scene.window()->frameGeometry())) << gone.x() << ", " << gone.y();
    }
    const QPoint chosen = room.topLeft() + QPoint(30, 50);
    scene.window()->move(chosen);
    scene.open();
    EXPECT_EQ(scene.window()->pos(), chosen) << "a window in sight stays where it is";
}

TEST_F(SettingsSceneTest, ComesBackByItselfWhenADisplayGoes) {
    scene.open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(scene.window()));
    desktop.platform.fakeMainLoop.runPosted();
    QScreen* display = scene.window()->screen();
    scene.window()->move(display->geometry().right() + 500, 40);
    QApplication::processEvents();
    ASSERT_FALSE(display->geometry().intersects(scene.window()->frameGeometry()));
    // As Qt says of the other display, while the window is still on it.
    Q_EMIT qGuiApp->screenRemoved(display);
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_TRUE(display->availableGeometry().contains(scene.window()->frameGeometry()));

    scene.window()->move(display->geometry().right() + 500, 40);
    QApplication::processEvents();
    Q_EMIT display->geometryChanged(display->geometry());
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_TRUE(display->availableGeometry().contains(scene.window()->frameGeometry()))
        << "a display became smaller";
}

TEST_F(SettingsSceneTest, TakesNoMoreHeightThanItsDisplayHas) {
    scene.open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(scene.window()));
    desktop.platform.fakeMainLoop.runPosted();
    const int room = scene.window()->screen()->availableGeometry().height();
    EXPECT_GT(content->mostHeight, room - 60) << "but for a frame";
    EXPECT_LE(content->mostHeight, room);
    content->limitHeight(300);
    QApplication::processEvents();
    EXPECT_EQ(scene.window()->size(), QSize(520, 300)) << "the window follows";
}

TEST_F(SettingsSceneTest, StaysWholeWhenItsDisplayLetsItGrow) {
    scene.open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(scene.window()));
    desktop.platform.fakeMainLoop.runPosted();
    QScreen* display = scene.window()->screen();
    const QRect room = display->availableGeometry();
    content->limitHeight(300);
    QApplication::processEvents();
    scene.window()->move(room.left() + 20, room.bottom() + 1 - 300);
    QApplication::processEvents();
    Q_EMIT display->availableGeometryChanged(room);
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_GT(scene.window()->height(), 300);
    EXPECT_TRUE(room.contains(scene.window()->frameGeometry()));
}

TEST_F(SettingsSceneTest, ClosesByTheUsualKeys) {
    scene.open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(scene.window()));
    QTest::keySequence(scene.window(), QKeySequence::Close);
    EXPECT_EQ(scene.window(), nullptr);
}

TEST_F(SettingsSceneTest, DestroysItsViewsWhenTheWindowCloses) {
    scene.open();
    const QPointer<QWidget> window = scene.window();
    window->close();
    EXPECT_EQ(scene.window(), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());
    scene.open();
    EXPECT_EQ(viewsMade, 2) << "view state is new each time";
}

} // namespace tilewright::testing
