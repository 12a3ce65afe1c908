// What every panel surface has to do.

#include "PlatformWorld.h"

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>
#include <vector>

namespace tilewright::testing {
namespace {

/// Nothing around the content.
class BareChrome final : public PanelChrome {
public:
    QMargins margins(PanelRendering) const override { return {}; }
    void paint(QPainter&, const QRect&, const QPalette&, PanelRendering) override {}
};

/// Wants a height, and takes less.
class Content final : public QWidget {
public:
    explicit Content(int height)
        : wanted_(300, height) {
        setFixedWidth(wanted_.width());
    }
    QSize sizeHint() const override { return wanted_; }

private:
    const QSize wanted_;
};

/// A panel of a world's platform, and what it has told and shown so far. To be opened once the
/// world is at rest: a window that is just becoming the active one would dismiss it.
struct PanelInHand {
    explicit PanelInHand(PlatformWorld& theWorld, int contentHeight = 200)
        : world(theWorld)
        , wantedHeight(contentHeight)
        , panel(world.platform().makePanelSurface([this] { return makeView(); },
                                                  std::make_unique<BareChrome>())) {
        QObject::connect(panel.get(), &PanelSurface::opened, panel.get(), [this] { ++openings; });
        QObject::connect(panel.get(), &PanelSurface::dismissed, panel.get(),
                         [this](PanelDismissal why) { dismissals.push_back(why); });
    }

    /// Opens by a point in the middle of the display; false when it does not get there.
    [[nodiscard]] bool open() {
        panel->open(AppKitRect{700, 500, 0, 0});
        return isShownSoon();
    }
    [[nodiscard]] bool isShownSoon() {
        return world.waitUntil(
            [this] { return panel->isOpen() && view && view->isVisible() && world.showsPanel(); });
    }
    [[nodiscard]] bool isGoneSoon() {
        return world.waitUntil([this] { return !panel->isOpen() && !world.showsPanel(); });
    }

    PlatformWorld& world;
    int wantedHeight;
    QPointer<QWidget> view;
    int viewsMade = 0;
    int openings = 0;
    std::vector<PanelDismissal> dismissals;
    std::unique_ptr<PanelSurface> panel;

private:
    [[nodiscard]] std::unique_ptr<QWidget> makeView() {
        ++viewsMade;
        auto made = std::make_unique<Content>(wantedHeight);
        view = made.get();
        return made;
    }
};

} // namespace

TEST_P(PlatformConformance, ShowsThePanelsContentFromItsOpeningToItsClosing) {
    ASSERT_TRUE(openKnownWindow());
    PanelInHand hand(*world);
    EXPECT_FALSE(hand.panel->isOpen());
    EXPECT_FALSE(world->showsPanel());
    EXPECT_EQ(hand.viewsMade, 0);
    ASSERT_TRUE(hand.open());
    EXPECT_EQ(hand.openings, 1);
    EXPECT_EQ(hand.viewsMade, 1);
    EXPECT_EQ(hand.view->size(), QSize(300, 200));
    hand.panel->open(std::nullopt);
    EXPECT_EQ(hand.openings, 1) << "it is open already";
    EXPECT_EQ(hand.viewsMade, 1);
    EXPECT_TRUE(hand.dismissals.empty());
    hand.panel->close();
    EXPECT_TRUE(hand.isGoneSoon());
    EXPECT_EQ(hand.dismissals, std::vector{PanelDismissal::request});
    hand.panel->close();
    EXPECT_EQ(hand.dismissals.size(), 1U) << "it is closed already";
}

TEST_P(PlatformConformance, ShowsNewContentAtEachOpeningOfThePanel) {
    ASSERT_TRUE(openKnownWindow());
    PanelInHand hand(*world);
    ASSERT_TRUE(hand.open());
    const QPointer<QWidget> first = hand.view;
    hand.panel->close();
    hand.wantedHeight = 240;
    ASSERT_TRUE(hand.open());
    EXPECT_EQ(hand.openings, 2);
    EXPECT_EQ(hand.viewsMade, 2);
    EXPECT_EQ(hand.view->height(), 240);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull()) << "nothing of a closed panel is kept";
}

TEST_P(PlatformConformance, GivesThePanelsContentNoMoreHeightThanItsDisplayHas) {
    ASSERT_TRUE(openKnownWindow());
    PanelInHand hand(*world, 20'000);
    ASSERT_TRUE(hand.open());
    EXPECT_EQ(hand.view->width(), 300);
    EXPECT_GT(hand.view->height(), 100);
    EXPECT_LE(hand.view->height(), screens().front()->visibleFrame().height);
}

TEST_P(PlatformConformance, GivesThePanelsContentTheHeightOfTheDisplayThatItIsOpenedOn) {
    ASSERT_TRUE(openKnownWindow());
    world->splitDisplay();
    ASSERT_TRUE(world->waitUntil([&] { return screens().size() == 2; }));
    ASSERT_EQ(screens()[0]->frame().height, 2 * screens()[1]->frame().height);
    PanelInHand hand(*world, 20'000);
    for (const ScreenPtr& screen : std::vector<ScreenPtr>(screens())) {
        const AppKitRect area = screen->visibleFrame();
        hand.panel->open(AppKitRect{area.center().x, area.maxY() - 30, 0, 0});
        ASSERT_TRUE(hand.isShownSoon());
        EXPECT_LE(hand.view->height(), area.height);
        EXPECT_GT(hand.view->height(), 0.7 * area.height);
        hand.panel->close();
        ASSERT_TRUE(hand.isGoneSoon());
    }
}

TEST_P(PlatformConformance, OpensAndClosesThePanelByClicksOnTheItem) {
    ASSERT_TRUE(openKnownWindow());
    const AppKitRect item{600, 700, 24, 24};
    PanelInHand hand(*world);
    for (int round = 1; round <= 2; ++round) {
        hand.panel->toggle(item);
        ASSERT_TRUE(hand.isShownSoon());
        EXPECT_EQ(hand.openings, round);
        hand.panel->toggle(item);
        ASSERT_TRUE(hand.isGoneSoon());
    }
    EXPECT_EQ(hand.dismissals, (std::vector{PanelDismissal::request, PanelDismissal::request}));
}

TEST_P(PlatformConformance, DismissesThePanelOnEscape) {
    ASSERT_TRUE(openKnownWindow());
    PanelInHand hand(*world);
    ASSERT_TRUE(hand.open());
    // Another client may hold the keyboard for a while.
    ASSERT_TRUE(world->waitUntil([&] {
        world->tapEscape();
        return !hand.panel->isOpen();
    }));
    EXPECT_TRUE(hand.isGoneSoon());
    EXPECT_EQ(hand.dismissals, std::vector{PanelDismissal::escape});
}

TEST_P(PlatformConformance, DismissesThePanelOnAPressOutsideIt) {
    ASSERT_TRUE(openKnownWindow());
    world->movePointer(middleOf(opened));
    PanelInHand hand(*world);
    hand.panel->open(AppKitRect{1000, 800, 0, 0});
    ASSERT_TRUE(hand.isShownSoon());
    // What is pressed before the panel listens may be the press that opened it.
    ASSERT_TRUE(world->waitUntil([&] {
        world->pressButton();
        world->releaseButton();
        return !hand.panel->isOpen();
    }));
    EXPECT_TRUE(hand.isGoneSoon());
    EXPECT_EQ(hand.dismissals, std::vector{PanelDismissal::pressOutside});
}

TEST_P(PlatformConformance, DismissesThePanelWhenAnotherWindowBecomesTheActiveOne) {
    ASSERT_TRUE(openKnownWindow());
    PanelInHand hand(*world);
    ASSERT_TRUE(hand.open());
    static_cast<void>(world->openWindow({{150, 170}, {400, 300}}));
    EXPECT_TRUE(hand.isGoneSoon());
    EXPECT_EQ(hand.dismissals, std::vector{PanelDismissal::anotherWindow});
}

} // namespace tilewright::testing
