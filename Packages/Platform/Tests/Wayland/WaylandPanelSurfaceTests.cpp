// The panel as a window that nobody here can place.

#include <Wayland/WaylandPanelSurface.h>

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QTest>
#include <gtest/gtest.h>

using namespace tilewright;

namespace {

class PlainChrome final : public PanelChrome {
public:
    [[nodiscard]] QMargins margins(PanelRendering) const override { return {10, 10, 10, 10}; }
    void paint(QPainter&, const QRect&, const QPalette&, PanelRendering) override {}
};

class WaylandPanelSurfaceTest : public ::testing::Test {
protected:
    WaylandPanelSurfaceTest() {
        QObject::connect(&panel, &PanelSurface::opened, &panel, [this] { ++opened; });
        QObject::connect(&panel, &PanelSurface::dismissed, &panel,
                         [this](PanelDismissal why) { dismissals.push_back(why); });
    }
    [[nodiscard]] std::unique_ptr<QWidget> makeView() {
        auto made = std::make_unique<QWidget>();
        made->setFixedSize(300, 200);
        view = made.get();
        return made;
    }

    QPointer<QWidget> view;
    WaylandPanelSurface panel{[this] { return makeView(); }, std::make_unique<PlainChrome>()};
    int opened = 0;
    std::vector<PanelDismissal> dismissals;
};

} // namespace

TEST_F(WaylandPanelSurfaceTest, ShowsNewContentAtEachOpeningWithTheChromesRoomAround) {
    EXPECT_FALSE(panel.isOpen());
    panel.open(std::nullopt);
    ASSERT_TRUE(panel.isOpen());
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(panel.window()->size(), QSize(320, 220));
    const QPointer<QWidget> first = view;
    panel.open(std::nullopt);
    EXPECT_EQ(opened, 1) << "it is open already";
    panel.close();
    EXPECT_EQ(dismissals, std::vector{PanelDismissal::request});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(first, nullptr);
    panel.toggle(AppKitRect{});
    EXPECT_TRUE(panel.isOpen());
    EXPECT_NE(view, nullptr);
}

TEST_F(WaylandPanelSurfaceTest, FollowsTheSizeThatItsContentWants) {
    panel.open(std::nullopt);
    view->setFixedSize(300, 260);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(panel.window()->size(), QSize(320, 280));
}

TEST_F(WaylandPanelSurfaceTest, GoesOnEscape) {
    panel.open(std::nullopt);
    QTest::keyClick(panel.window(), Qt::Key_Escape);
    EXPECT_FALSE(panel.isOpen());
    EXPECT_EQ(dismissals, std::vector{PanelDismissal::escape});
    panel.close();
    EXPECT_EQ(dismissals.size(), 1U);
}

TEST_F(WaylandPanelSurfaceTest, GoesOnceAnotherWindowHasTheFocus) {
    panel.open(std::nullopt);
    QEvent deactivation(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(panel.window(), &deactivation);
    EXPECT_FALSE(panel.isOpen());
    EXPECT_EQ(dismissals, std::vector{PanelDismissal::anotherWindow});
}

TEST_F(WaylandPanelSurfaceTest, ClosesByASecondClickOfTheItemOrByTheDesktop) {
    panel.toggle(std::nullopt);
    panel.toggle(std::nullopt);
    EXPECT_FALSE(panel.isOpen());
    panel.open(std::nullopt);
    panel.window()->close();
    EXPECT_FALSE(panel.isOpen());
    EXPECT_EQ(dismissals, (std::vector{PanelDismissal::request, PanelDismissal::desktop}));
}
