// What every overlay surface and every status item has to do.

#include "PlatformWorld.h"

#include <QDeadlineTimer>
#include <QIcon>
#include <QPaintEvent>
#include <QPainter>
#include <QWidget>
#include <cmath>
#include <vector>

namespace tilewright::testing {
namespace {

/// One colour everywhere.
class PlainView final : public OverlayView {
public:
    OverlayPicture picture(const ScreenPtr&) const override { return {}; }
    void onPictureChanged(std::function<void()>) override {}
    QWidget& widget() override { return canvas_; }
    void setRepaint(std::function<void(const QRegion&)>) override {}
    void setShown(bool) override {}
    void setRendering(OverlayRendering) override {}
    // The surface may ask before the view has its size: more than any display has.
    QRegion outline() override { return QRect(0, 0, 10'000, 10'000); }
    QRegion blurArea() override { return {}; }
    void onAreasChanged(std::function<void()>) override {}
    void finishAnimations() override { ++endings; }

    int endings = 0;

private:
    class Canvas final : public QWidget {
        void paintEvent(QPaintEvent* event) override {
            QPainter(this).fillRect(event->rect(), overlayColor);
        }
    };
    Canvas canvas_;
};

/// A symbol that fills one half of its square.
QIcon halfFilled(bool isLeft) {
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter(&pixmap).fillRect(isLeft ? 0 : 32, 0, 32, 64, Qt::black);
    return QIcon(pixmap);
}

/// Whether a picture shows that symbol.
bool isHalfFilled(const QImage& picture, bool isLeft) {
    if (picture.isNull())
        return false;
    const auto isOpaque = [&](double part) {
        return picture.pixelColor(int(picture.width() * part), picture.height() / 2).alpha() > 127;
    };
    return isOpaque(0.25) == isLeft && isOpaque(0.75) == !isLeft;
}

} // namespace

TEST_P(PlatformConformance, ShowsTheOverlayOnTheWholeDisplayFromItsShowingToItsHiding) {
    const auto view = std::make_shared<PlainView>();
    auto overlay = platform().makeOverlaySurface(view);
    const AppKitRect frame = screens().front()->frame();
    overlay->setScreen(screens().front());
    EXPECT_EQ(world->overlayFrame(), std::nullopt);
    for (int showing = 1; showing <= 2; ++showing) {
        overlay->orderFront();
        ASSERT_TRUE(world->waitUntil([&] { return world->overlayFrame() == frame; }));
        EXPECT_EQ(view->endings, world->drawsOverlays() ? showing - 1 : 0);
        EXPECT_EQ(view->widget().isVisible(), world->showsOverlayWidgets());
        overlay->orderOut();
        EXPECT_TRUE(world->waitUntil([&] { return !world->overlayFrame(); }));
        EXPECT_EQ(view->endings, world->drawsOverlays() ? showing : 0);
        EXPECT_FALSE(view->widget().isVisible());
    }
    if (world->drawsOverlays()) {
        EXPECT_EQ(view->widget().size(), QSize(int(frame.width), int(frame.height)));
    }
}

TEST_P(PlatformConformance, HasTheOverlaysPictureReadyBeforeItShows) {
    auto overlay = platform().makeOverlaySurface(std::make_shared<PlainView>());
    overlay->setScreen(screens().front());
    overlay->orderFront();
    // The surface is given no turn of the loop in which it could paint.
    std::optional<AppKitRect> shown;
    for (QDeadlineTimer deadline(5000);
         world->showsOverlaysWhole() && !shown && !deadline.hasExpired();)
        shown = world->overlayFrame();
    EXPECT_EQ(shown.has_value(), world->showsOverlaysWhole());
}

TEST_P(PlatformConformance, TakesTheOverlayAwayWithItsSurface) {
    const auto view = std::make_shared<PlainView>();
    auto overlay = platform().makeOverlaySurface(view);
    overlay->setScreen(screens().front());
    overlay->orderFront();
    ASSERT_TRUE(world->waitUntil([&] { return world->overlayFrame().has_value(); }));
    overlay.reset();
    EXPECT_TRUE(world->waitUntil([&] { return !world->overlayFrame(); }));
    EXPECT_EQ(view.use_count(), 1) << "the surface keeps the view no longer than it lives";
}

TEST_P(PlatformConformance, LeavesPressesAndTheKeyboardToTheWindowBeneathTheOverlay) {
    const AppKitPoint middle = screens().front()->frame().center();
    const double rows = screens().front()->frame().height;
    // In the middle of the display.
    const WindowFrame beneath{{middle.x - 200, rows - middle.y - 150}, {400, 300}};
    process = world->openWindow(beneath);
    ASSERT_TRUE(
        world->waitUntil([&] { return platform().workspace.frontmostApplication() == process; }));
    auto overlay = platform().makeOverlaySurface(std::make_shared<PlainView>());
    overlay->setScreen(screens().front());
    overlay->orderFront();
    ASSERT_TRUE(world->waitUntil([&] { return world->overlayFrame().has_value(); }))
        << "the window is not to cover it";
    EXPECT_FALSE(world->overlayTakesPresses());
    // What the server sees of a press comes after whatever showing the overlay has brought about.
    int releases = 0;
    const auto monitor = platform().eventMonitors.addGlobalMonitor(
        EventMask{EventType::leftMouseUp}, [&](const Event&) { ++releases; });
    ASSERT_TRUE(monitor);
    world->movePointer(middle);
    world->pressButton();
    world->releaseButton();
    EXPECT_TRUE(world->waitUntil([&] { return releases == 1; }));
    platform().eventMonitors.removeMonitor(*monitor);
    EXPECT_FALSE(world->isThisApplicationInFront());
    EXPECT_EQ(platform().workspace.frontmostApplication(), process);
}

TEST_P(PlatformConformance, ShowsTheItemFromItsMakingToThePlatformsEnd) {
    EXPECT_FALSE(world->shownItem()) << "nothing is shown before it is asked for";
    StatusItem& item = platform().statusItem();
    EXPECT_EQ(&platform().statusItem(), &item);
    for (const bool isLeft : {true, false}) {
        const QString name = isLeft ? QStringLiteral("One") : QStringLiteral("Other");
        item.setSymbol(name, halfFilled(isLeft));
        item.setAccessibleName(name);
        EXPECT_TRUE(world->waitUntil([&] {
            const auto shown = world->shownItem();
            return shown && shown->name == name &&
                   (!world->showsEverySymbol() || isHalfFilled(shown->picture, isLeft));
        })) << name.toStdString();
    }
    world->endPlatform();
    EXPECT_TRUE(world->waitUntil([&] { return !world->shownItem(); }));
}

TEST_P(PlatformConformance, TellsOfAClickOnTheItemAndWhereTheItemIs) {
    StatusItem& item = platform().statusItem();
    item.setSymbol(QStringLiteral("symbol"), halfFilled(true));
    std::vector<std::optional<AppKitRect>> places;
    QObject::connect(&item, &StatusItem::activated, &item,
                     [&](const std::optional<AppKitRect>& place) { places.push_back(place); });
    ASSERT_TRUE(world->waitUntil([&] { return world->shownItem().has_value(); }));
    EXPECT_TRUE(places.empty());
    world->movePointer({20, 20});
    const AppKitPoint at = world->clickItem();
    ASSERT_TRUE(world->waitUntil([&] { return !places.empty(); }));
    EXPECT_EQ(places.size(), 1U);
    const auto& place = places.front();
    ASSERT_TRUE(place);
    // An empty rectangle is the very point.
    const AppKitPoint corner{place->x, place->y};
    EXPECT_TRUE(place->isEmpty() ? corner == at : place->contains(at));
    // The panel's display is chosen by it.
    const AppKitPoint pointer = platform().pointer.location();
    constexpr double itemsSize = 24;
    EXPECT_LE(std::hypot(pointer.x - at.x, pointer.y - at.y), itemsSize);
}

} // namespace tilewright::testing
