// What is GNOME's own of the platform: what all platforms promise is tested with the others.

#include "MockCompanion.h"
#include "PrivateBus.h"

#include <Companion/CompanionAccessibility.h>
#include <Companion/CompanionDecoder.h>
#include <Companion/CompanionInstanceActivation.h>
#include <Companion/CompanionPanelSurface.h>
#include <Companion/CompanionPointer.h>
#include <Companion/CompanionStatusItem.h>
#include <FakeMainLoop.h>
#include <FakeNotifierWatcher.h>
#include <Gnome/GnomeOverlaySurface.h>

#include <QPainter>
#include <QPointer>
#include <QSignalSpy>
#include <QWidget>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;

/// Two tiles, of which the second is highlighted after a change.
class TwoTiles final : public OverlayView {
public:
    OverlayPicture picture(const ScreenPtr& display) const override {
        OverlayPicture picture;
        picture.display = display;
        const AppKitRect frame = display->frame();
        OverlayPictureTile tile;
        tile.x = 8;
        tile.y = 8.4;
        tile.width = frame.width / 3 - 12;
        tile.height = frame.height - 16;
        tile.cornerRadius = 14;
        tile.borderWidth = isHighlighted ? 3 : 1;
        tile.light = {isHighlighted ? 0.0 : 1.0, {1, 1, 1, 0.75}};
        tile.dark = {1, {0, 0, 0, 0.5}};
        picture.tiles = {tile, tile};
        picture.transition = 120ms;
        return picture;
    }
    void onPictureChanged(std::function<void()> callback) override { changed = callback; }
    QWidget& widget() override { return canvas_; }
    void setRepaint(std::function<void(const QRegion&)>) override {}
    void setShown(bool) override {}
    void setRendering(OverlayRendering) override {}
    QRegion outline() override { return {}; }
    QRegion blurArea() override { return {}; }
    void onAreasChanged(std::function<void()>) override {}
    void finishAnimations() override {}

    std::function<void()> changed;
    bool isHighlighted = false;

private:
    QWidget canvas_;
};

class MarginChrome final : public PanelChrome {
public:
    QMargins margins(PanelRendering) const override { return {22, 23, 24, 25}; }
    void paint(QPainter&, const QRect&, const QPalette&, PanelRendering) override {}
};

/// Wants a height, and takes less.
class Content final : public QWidget {
public:
    explicit Content(const int& height)
        : height_(height) {
        setFixedWidth(300);
    }
    QSize sizeHint() const override { return {300, height_}; }

private:
    const int& height_;
};

class GnomePartsTest : public ::testing::Test {
protected:
    void tell(const char* method, const QByteArray& text) {
        const auto message = CompanionDecoder::decode(QString::fromLatin1(method), text);
        ASSERT_TRUE(message) << text.toStdString();
        state.take(*message);
    }
    /// The command of a name among what the companion is to do now; empty without one.
    [[nodiscard]] QJsonObject command(const char* name) {
        const QJsonObject answer = QJsonDocument::fromJson(outbox.take().toUtf8()).object();
        for (const auto& value : answer[QStringLiteral("do")].toArray()) {
            if (value.toObject()[QStringLiteral("c")].toString() == QLatin1String(name))
                return value.toObject();
        }
        return {};
    }
    [[nodiscard]] std::unique_ptr<CompanionPanelSurface> makePanel() {
        return std::make_unique<CompanionPanelSurface>(
            state, screens, pointer, outbox, loop,
            [this] {
                auto made = std::make_unique<Content>(viewHeight);
                view = made.get();
                return made;
            },
            std::make_unique<MarginChrome>());
    }

    CompanionState state;
    CompanionOutbox outbox;
    FakeMainLoop loop;
    CompanionScreens screens{state, DrmConnectors(QStringLiteral("/nonexistent"))};
    CompanionPointer pointer{state, screens};
    QPointer<QWidget> view;
    int viewHeight = 200;
};

} // namespace

TEST_F(GnomePartsTest, AnOverlayIsSentInWholeUnitsWithItsEdgesRounded) {
    tell("Hello", helloText());
    const auto tiles = std::make_shared<TwoTiles>();
    GnomeOverlaySurface overlay(state, screens, outbox, tiles);
    overlay.setScreen(screens.all().front());
    EXPECT_TRUE(command("overlay").isEmpty()) << "it is hidden";
    overlay.orderFront();
    const QJsonObject shown = command("overlay");
    EXPECT_EQ(shown[QStringLiteral("area")].toArray(), (QJsonArray{0, 0, 1920, 1080}));
    EXPECT_EQ(shown[QStringLiteral("transition")].toInt(), 120);
    const QJsonArray tile = shown[QStringLiteral("tiles")].toArray()[0].toArray();
    EXPECT_EQ((QJsonArray{tile[0], tile[1], tile[2], tile[3], tile[4], tile[7]}),
              (QJsonArray{8, 8, 628, 1064, 14, 1}));
    const QJsonArray light{1, QJsonArray{255, 255, 255, 0.75}};
    const QJsonArray dark{1, QJsonArray{0, 0, 0, 0.5}};
    EXPECT_EQ(shown[QStringLiteral("lines")].toArray(),
              (QJsonArray{QJsonArray{light, dark}, QJsonArray{light, dark}}));
    tiles->isHighlighted = true;
    tiles->changed();
    EXPECT_EQ(command("overlay")[QStringLiteral("tiles")].toArray()[0].toArray()[7].toInt(), 3);
    overlay.orderOut();
    EXPECT_FALSE(command("overlayGone").isEmpty());
    tiles->changed();
    EXPECT_TRUE(command("overlay").isEmpty());
}

TEST_F(GnomePartsTest, AnOverlaysLengthsArePointsWhereTheDesktopCountsPixels) {
    tell("Hello", helloText(displayText().replace(R"("unit":1)", R"("unit":2)")));
    GnomeOverlaySurface overlay(state, screens, outbox, std::make_shared<TwoTiles>());
    overlay.setScreen(screens.all().front());
    overlay.orderFront();
    const QJsonObject shown = command("overlay");
    EXPECT_EQ(shown[QStringLiteral("lines")].toArray()[0].toArray()[1].toArray()[0].toInt(), 2);
    const QJsonArray tile = shown[QStringLiteral("tiles")].toArray()[0].toArray();
    EXPECT_EQ((QJsonArray{tile[0], tile[1], tile[2], tile[3], tile[4], tile[7]}),
              (QJsonArray{16, 17, 616, 1048, 28, 2}));
}

TEST_F(GnomePartsTest, APanelIsDescribedBeforeItIsShownAndPlacedByItsAnchor) {
    tell("Hello", helloText());
    const auto panel = makePanel();
    const QJsonObject before = command("panel");
    EXPECT_EQ(before[QStringLiteral("title")].toString(), ToplevelPanelWindow::title());
    EXPECT_EQ(before[QStringLiteral("margins")].toArray(), (QJsonArray{22, 23, 24, 25}));
    EXPECT_FALSE(before[QStringLiteral("shown")].toBool());
    panel->open(screens.coordinates().toAppKit(CompanionRect{1800, 0, 24, 32}));
    const QJsonObject shown = command("panel");
    EXPECT_TRUE(shown[QStringLiteral("shown")].toBool());
    EXPECT_EQ(shown[QStringLiteral("anchor")].toArray(), (QJsonArray{1800, 0, 24, 32}));
    EXPECT_EQ(shown[QStringLiteral("area")].toArray(), (QJsonArray{0, 32, 1920, 1048}));
    EXPECT_EQ(panel->window()->windowTitle(), ToplevelPanelWindow::title());
    panel->close();
    EXPECT_EQ(command("panel")[QStringLiteral("shown")], QJsonValue(false));
}

TEST_F(GnomePartsTest, APanelHasNoMoreShadowAroundItThanThereIsRoomInItsDisplaysFreePart) {
    // A bar at each edge.
    tell("Hello", helloText(displayText(true, "[0,0,1920,1080]", "[50,32,1800,1000]")));
    const auto panel = makePanel();
    const auto expectAt = [&](const CompanionRect& anchor, QPoint ground, const QMargins& margins) {
        SCOPED_TRACE(::testing::Message() << anchor.x << ", " << anchor.y);
        panel->open(screens.coordinates().toAppKit(anchor));
        const QJsonObject shown = command("panel");
        EXPECT_EQ(shown[QStringLiteral("corner")].toArray(),
                  (QJsonArray{ground.x() - margins.left(), ground.y() - margins.top()}));
        EXPECT_EQ(shown[QStringLiteral("margins")].toArray(),
                  (QJsonArray{margins.left(), margins.top(), margins.right(), margins.bottom()}));
        EXPECT_EQ(panel->window()->size(), QSize(300, 200).grownBy(margins));
        EXPECT_EQ(view->geometry(), QRect(margins.left(), margins.top(), 300, 200));
        panel->close();
    };
    constexpr int gap = PanelPlacement::gap;
    constexpr QMargins all(22, 23, 24, 25);
    expectAt({600, 400, 0, 0}, {450, 400 + gap}, all);
    expectAt({600, 1000, 0, 0}, {450, 1000 - gap - 200}, all);
    // In the bar at the top, right below it, and at the foot of that at the bottom.
    expectAt({600, 0, 24, 32}, {612 - 150, 32 + gap}, {22, gap, 24, 25});
    expectAt({600, 40, 0, 0}, {450, 40 + gap}, {22, 40 + gap - 32, 24, 25});
    expectAt({600, 1032, 24, 48}, {612 - 150, 1032 - gap - 200}, {22, 23, 24, gap});
    // At the sides, and in the corners.
    expectAt({0, 500, 50, 24}, {50 + gap, 512 - 100}, {gap, 23, 24, 25});
    expectAt({1850, 500, 70, 24}, {1850 - gap - 300, 512 - 100}, {22, 23, gap, 25});
    expectAt({1690, 0, 24, 32}, {1850 - gap - 300, 32 + gap}, {22, gap, gap, 25});
    expectAt({1685, 0, 10, 32}, {1690 - 150, 32 + gap}, {22, gap, 1850 - 1840, 25});
    expectAt({60, 1032, 24, 48}, {50 + gap, 1032 - gap - 200}, {gap, 23, 24, gap});
}

TEST_F(GnomePartsTest, APanelThatNobodyPlacesHasAllOfItsShadow) {
    tell("Hello", helloText());
    const auto panel = makePanel();
    state.lose();
    panel->open(screens.coordinates().toAppKit(CompanionRect{1800, 0, 24, 32}));
    EXPECT_EQ(view->geometry(), QRect(22, 23, 300, 200));
}

TEST_F(GnomePartsTest, APanelIsPlacedInTheDesktopsUnits) {
    tell("Hello", helloText(displayText().replace(R"("unit":1)", R"("unit":2)")));
    const auto panel = makePanel();
    panel->open(screens.coordinates().toAppKit(CompanionRect{1001, 0, 25, 32}));
    constexpr int gap = 2 * PanelPlacement::gap;
    // The middle of the item is in that of a unit.
    EXPECT_EQ(command("panel")[QStringLiteral("corner")].toArray(),
              (QJsonArray{1014 - 300 - 44, 32 + gap - gap}));
}

TEST_F(GnomePartsTest, APanelIsNoHigherThanItsDisplaysFreePartInQtsPoints) {
    tell("Hello", helloText(displayText().replace(R"("unit":1)", R"("unit":2)")));
    viewHeight = 5000;
    const auto panel = makePanel();
    panel->open(screens.coordinates().toAppKit(CompanionRect{1800, 0, 24, 32}));
    EXPECT_EQ(view->height(), 1048 / 2 - 2 * PanelPlacement::gap);
    const QJsonObject shown = command("panel");
    EXPECT_EQ(shown[QStringLiteral("margins")].toArray(), (QJsonArray{44, 8, 8, 8}))
        << "in the desktop's units";
}

TEST_F(GnomePartsTest, APanelFollowsTheSizeThatItsContentWants) {
    tell("Hello", helloText());
    const auto panel = makePanel();
    panel->open(screens.coordinates().toAppKit(CompanionRect{600, 400, 0, 0}));
    tell("PanelAwaited", "{}");
    viewHeight = 260;
    QEvent wish(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(view, &wish);
    EXPECT_EQ(panel->window()->height(), 260 + 23 + 25);
}

TEST_F(GnomePartsTest, APanelThatGrowsKeepsItsTopAndItsPlaceIsToldAgainOnlyWhereItCannot) {
    tell("Hello", helloText());
    const auto panel = makePanel();
    panel->open(screens.coordinates().toAppKit(CompanionRect{600, 500, 0, 0}));
    constexpr int gap = PanelPlacement::gap;
    const auto corner = [&] { return command("panel")[QStringLiteral("corner")].toArray(); };
    const auto grow = [&](int height) {
        viewHeight = height;
        QEvent wish(QEvent::LayoutRequest);
        QCoreApplication::sendEvent(view, &wish);
    };
    EXPECT_EQ(corner(), (QJsonArray{450 - 22, 500 + gap - 23}));
    tell("PanelAwaited", "{}");
    EXPECT_TRUE(corner().isEmpty());
    grow(300);
    EXPECT_TRUE(corner().isEmpty());
    grow(1080 - 500);
    EXPECT_EQ(corner(), (QJsonArray{450 - 22, 500 - gap - 23}));
    EXPECT_EQ(view->y(), 23);
}

TEST_F(GnomePartsTest, APanelAboveThePointerGrowsUpward) {
    tell("Hello", helloText());
    const auto panel = makePanel();
    panel->open(screens.coordinates().toAppKit(CompanionRect{600, 1000, 0, 0}));
    const auto top = [&] {
        return command("panel")[QStringLiteral("corner")].toArray().at(1).toInt(-1);
    };
    EXPECT_EQ(top(), 1000 - PanelPlacement::gap - viewHeight - 23);
    tell("PanelAwaited", "{}");
    viewHeight += 5;
    QEvent wish(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(view, &wish);
    EXPECT_EQ(top(), 1000 - PanelPlacement::gap - viewHeight - 23);
}

TEST_F(GnomePartsTest, APanelComesOnceTheCompanionAwaitsIt) {
    tell("Hello", helloText());
    const auto panel = makePanel();
    panel->open(std::nullopt);
    EXPECT_TRUE(panel->isOpen());
    EXPECT_FALSE(panel->window()->isVisible()) << "it would be seen elsewhere";
    tell("PanelAwaited", "{}");
    EXPECT_TRUE(panel->window()->isVisible());
    panel->close();
    tell("PanelAwaited", "{}");
    EXPECT_FALSE(panel->isOpen());
}

TEST_F(GnomePartsTest, APanelWaitsForACompanionOnlySoLong) {
    tell("Hello", helloText());
    const auto panel = makePanel();
    panel->open(std::nullopt);
    loop.advance(CompanionPanelSurface::companionPatience - 1ms);
    EXPECT_FALSE(panel->window()->isVisible());
    loop.advance(1ms);
    EXPECT_TRUE(panel->window()->isVisible());
    panel->close();
    panel->open(std::nullopt);
    panel->close();
    loop.advance(CompanionPanelSurface::companionPatience);
    EXPECT_FALSE(panel->isOpen());
}

TEST_F(GnomePartsTest, APanelComesAtOnceWhereNoCompanionIs) {
    const auto panel = makePanel();
    panel->open(std::nullopt);
    EXPECT_TRUE(panel->window()->isVisible());
}

TEST_F(GnomePartsTest, APanelThatThePressOfAClickCostTheFocusStaysClosedAtThatClick) {
    tell("Hello", helloText());
    const auto panel = makePanel();
    const auto loseTheFocus = [&] {
        panel->toggle(std::nullopt);
        ASSERT_TRUE(panel->isOpen());
        tell("Focus", R"({"focus":)" + windowText(2, "[0,0,9,9]", true) + "}");
        tell("Focus", R"({"focus":)" + windowText(1) + "}");
        ASSERT_FALSE(panel->isOpen());
    };
    loseTheFocus();
    loop.advance(CompanionPanelSurface::clickPatience);
    panel->toggle(std::nullopt);
    EXPECT_FALSE(panel->isOpen());
    // The next click is another one, and so is one that comes late.
    loseTheFocus();
    loop.advance(CompanionPanelSurface::clickPatience + 1ms);
    panel->toggle(std::nullopt);
    EXPECT_TRUE(panel->isOpen());
    panel->close();
    panel->toggle(std::nullopt);
    EXPECT_TRUE(panel->isOpen()) << "closed on purpose";
}

TEST_F(GnomePartsTest, APanelGoesInTheOverviewWithTheFocusAndWithTheCompanion) {
    tell("Hello", helloText());
    const auto panel = makePanel();
    std::vector<PanelDismissal> dismissals;
    QObject::connect(panel.get(), &PanelSurface::dismissed, panel.get(),
                     [&](PanelDismissal why) { dismissals.push_back(why); });
    panel->open(std::nullopt);
    tell("PressOutside", R"({"overview":true})");
    EXPECT_FALSE(panel->isOpen());
    panel->open(std::nullopt);
    tell("Focus", R"({"focus":)" + windowText(1) + "}");
    EXPECT_TRUE(panel->isOpen()) << "that was before it had the focus";
    tell("Focus", R"({"focus":)" + windowText(2, "[0,0,9,9]", true) + "}");
    tell("Focus", R"({"focus":)" + windowText(1) + "}");
    EXPECT_FALSE(panel->isOpen());
    panel->open(std::nullopt);
    state.lose();
    EXPECT_FALSE(panel->isOpen());
    panel->open(std::nullopt);
    EXPECT_TRUE(panel->isOpen()) << "an ordinary window then";
    tell("Hello", helloText());
    EXPECT_FALSE(panel->isOpen()) << "a new companion knows nothing of it";
    EXPECT_EQ(dismissals, (std::vector{PanelDismissal::anotherWindow, PanelDismissal::anotherWindow,
                                       PanelDismissal::desktop, PanelDismissal::desktop}));
}

TEST_F(GnomePartsTest, APanelStaysWhileSomethingOfItsOwnHasPoppedUp) {
    tell("Hello", helloText());
    const auto panel = makePanel();
    panel->open(std::nullopt);
    QEvent deactivation(QEvent::WindowDeactivate);
    {
        QWidget popup(view, Qt::Popup);
        popup.show();
        QCoreApplication::sendEvent(panel->window(), &deactivation);
        EXPECT_TRUE(panel->isOpen());
    }
    QCoreApplication::sendEvent(panel->window(), &deactivation);
    EXPECT_FALSE(panel->isOpen());
}

TEST_F(GnomePartsTest, AnItemIsTheCompanionsAndAnotherOnlyWhileThatIsAway) {
    PrivateBus bus;
    const FakeNotifierWatcher watcher(bus.connect());
    MessageBus own(bus.connect());
    CompanionStatusItem item(state, screens, outbox, loop, own);
    item.setSymbol(QStringLiteral("cup.and.saucer"), QIcon());
    item.setAccessibleName(QStringLiteral("Tilewright"));
    const auto isShownElsewhere = [&] { return !watcher.items.isEmpty(); };
    loop.advance(CompanionStatusItem::patience - 1ms);
    EXPECT_FALSE(isShownElsewhere());
    tell("Hello", helloText());
    const QJsonObject shown = command("item");
    EXPECT_EQ(shown[QStringLiteral("icon")].toString(), QStringLiteral("tilewright-symbolic"));
    EXPECT_EQ(shown[QStringLiteral("name")].toString(), QStringLiteral("Tilewright"));
    EXPECT_EQ(loop.activeTimerCount(), 0U) << "nothing waits to take its place";
    item.setSymbol(QStringLiteral("cup.and.saucer.fill"), QIcon());
    EXPECT_EQ(command("item")[QStringLiteral("icon")].toString(),
              QStringLiteral("tilewright-awake-symbolic"));
    state.lose();
    loop.advance(CompanionStatusItem::patience);
    EXPECT_TRUE(waitUntil(isShownElsewhere));
    tell("Hello", helloText());
    EXPECT_EQ(command("item")[QStringLiteral("icon")].toString(),
              QStringLiteral("tilewright-awake-symbolic"))
        << "the new companion is told again";
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(GnomePartsTest, AClickOnTheItemTellsItsPlaceAndThePointer) {
    PrivateBus bus;
    MessageBus own(bus.connect());
    tell("Hello", helloText());
    CompanionStatusItem item(state, screens, outbox, loop, own);
    std::optional<AppKitRect> place;
    AppKitPoint at;
    QObject::connect(&item, &StatusItem::activated, &item, [&](const auto& told) {
        place = told;
        at = pointer.location();
    });
    tell("ItemClicked", R"({"item":[1800,0,24,32],"pointer":[1810,10]})");
    EXPECT_EQ(place, (AppKitRect{1800, 1048, 24, 32}));
    EXPECT_EQ(at, (AppKitPoint{1810.5, 1069.5}));
}

TEST_F(GnomePartsTest, ALaterStartIsToldOfOnceThePointerIsKnown) {
    PrivateBus bus;
    MessageBus own(bus.connect());
    CompanionInstanceActivation activation(QStringLiteral("wayland-9"), own, state, outbox, loop);
    QSignalSpy requested(&activation, &InstanceActivation::activationRequested);
    ASSERT_EQ(activation.claim(), InstanceActivation::Claim::first);
    const auto startAgain = [&] {
        const QDBusConnection other = bus.connect();
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("org.tilewright.Tilewright.Displaywayland_2d9"),
            QStringLiteral("/org/tilewright/Tilewright"), QStringLiteral("org.tilewright.Instance"),
            QStringLiteral("Activate"));
        const QDBusPendingCallWatcher pending(other.asyncCall(message));
        EXPECT_TRUE(waitUntil([&] { return pending.isFinished(); }));
        EXPECT_NE(pending.reply().type(), QDBusMessage::ErrorMessage);
        QCoreApplication::processEvents();
    };
    startAgain();
    EXPECT_EQ(requested.size(), 1) << "nobody is there to be asked";
    tell("Hello", helloText());
    startAgain();
    EXPECT_EQ(requested.size(), 1);
    EXPECT_FALSE(command("pointer").isEmpty());
    tell("Pointer", R"({"pointer":[70,80],"keys":0})");
    EXPECT_EQ(requested.size(), 2);
    EXPECT_EQ(pointer.location(), (AppKitPoint{70.5, 999.5}));
    tell("Pointer", R"({"pointer":[71,80],"keys":0})");
    EXPECT_EQ(requested.size(), 2);
    startAgain();
    loop.advance(CompanionInstanceActivation::answerBound);
    EXPECT_EQ(requested.size(), 3) << "a companion that says nothing is not waited for";
}

TEST_F(GnomePartsTest, TheLaunchWaitsForACompanionAndTellsOnceThatThereIsNone) {
    int told = 0;
    CompanionAccessibility accessibility(state, screens, outbox, loop, [&] { ++told; });
    EXPECT_FALSE(accessibility.requestTrust());
    EXPECT_FALSE(accessibility.requestTrust()) << "what is asked meanwhile waits with it";
    loop.advance(CompanionAccessibility::loginPatience - 1ms);
    EXPECT_EQ(told, 0);
    loop.advance(1ms);
    EXPECT_EQ(told, 1);
    EXPECT_FALSE(accessibility.requestTrust());
    EXPECT_EQ(told, 2) << "the first snap that failed";
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(GnomePartsTest, TheLaunchTellsNothingWhereTheCompanionComesInTime) {
    int told = 0;
    CompanionAccessibility accessibility(state, screens, outbox, loop, [&] { ++told; });
    EXPECT_FALSE(accessibility.requestTrust());
    loop.advance(5s);
    tell("Hello", helloText());
    EXPECT_EQ(loop.activeTimerCount(), 0U);
    loop.advance(60s);
    EXPECT_EQ(told, 0);
    EXPECT_TRUE(accessibility.requestTrust());
}

TEST_F(GnomePartsTest, FramesAreSentWholeInTheCompanionsOwnUnits) {
    tell("Hello", helloText(displayText(true, "[1000,50,800,600]", "[1000,50,800,600]"),
                            windowText(7, "[1100,150,300,200]")));
    CompanionAccessibility accessibility(state, screens, outbox, loop, [] {});
    const auto window = accessibility.elementAtPosition({150, 150}).value;
    ASSERT_TRUE(window);
    EXPECT_FALSE(accessibility.elementAtPosition({50, 50}).value);
    const auto position = accessibility.makeValue(AXPoint{10.4, 20.6});
    const auto size = accessibility.makeValue(AXSize{100.2, 99.8});
    EXPECT_EQ(window->setValue(AXAttribute::position, *position), AXError::success);
    EXPECT_EQ(window->setValue(AXAttribute::size, *size), AXError::success);
    EXPECT_EQ(command("frame")[QStringLiteral("frame")].toArray(), (QJsonArray{1010, 71, 101, 99}));
    EXPECT_EQ(window->setValue(AXAttribute::size, *size), AXError::success);
    loop.runPosted();
    EXPECT_EQ(command("frame")[QStringLiteral("frame")].toArray(),
              (QJsonArray{1100, 150, 100, 100}))
        << "a size alone leaves the window where it is";
}

} // namespace tilewright::testing
