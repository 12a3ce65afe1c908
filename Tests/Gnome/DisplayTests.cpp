// The program with its companion on other displays than the one plain one, in sessions of GNOME
// Shell.

#include "ProgramInGnome.h"

#include <OverlayEdges.h>
#include <algorithm>
#include <cmath>
#include <ostream>

namespace tilewright::testing {
namespace {

/// How two displays are arranged.
struct Arrangement {
    const char* name;
    GnomeDisplay second;
    CompositorClient client;

    friend std::ostream& operator<<(std::ostream& out, const Arrangement& arrangement) {
        return out << arrangement.name;
    }
};

struct ProgramOnTwoMonitors : ProgramInGnome, ::testing::WithParamInterface<Arrangement> {
    ProgramOnTwoMonitors()
        : ProgramInGnome(QStringLiteral(TILEWRIGHT_PROGRAM), 2) {
        session.arrange({{}, GetParam().second});
    }
};

INSTANTIATE_TEST_SUITE_P(
    Of, ProgramOnTwoMonitors,
    ::testing::Values(
        Arrangement{"SideBySide", {{1920, 0}, 1}, CompositorClient::qt},
        Arrangement{"AboveEachOther", {{0, 1080}, 1}, CompositorClient::gtk4},
        Arrangement{"OfScalesOneAndTwo", {{1920, 0}, 2}, CompositorClient::qt},
        Arrangement{"AboveEachOtherOfScalesOneAndTwo", {{0, 1080}, 2}, CompositorClient::xwayland}),
    [](const auto& arrangement) { return std::string(arrangement.param.name); });

struct PanelOnTwoMonitors : ProgramOnTwoMonitors {
    /// Clicks the first zone in the open panel.
    void snapByThePanel() {
        session.input().move(firstZoneInPanel());
        session.input().click();
    }
    void closePanel() {
        session.input().tap(KernelKey::escape);
        EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << session.describe();
    }
};

INSTANTIATE_TEST_SUITE_P(
    Of, PanelOnTwoMonitors,
    ::testing::Values(Arrangement{"AboveEachOther", {{0, 1080}, 1}, CompositorClient::qt},
                      Arrangement{"OfScalesOneAndTwo", {{1920, 0}, 2}, CompositorClient::gtk4}),
    [](const auto& arrangement) { return std::string(arrangement.param.name); });

/// A session of its own for each scale: clients take a while to follow a change.
struct Bench : ProgramInGnome {
    void TestBody() override {}

    void expectToSnapAt(double scale) {
        SCOPED_TRACE(scale);
        session.arrange({{{}, scale}});
        const QColor ground = session.pixel(workArea().center());
        // Small enough to leave both edges that are looked at on the bare ground.
        const int unit = unitsPerPoint({});
        const QString title = session.startClient(CompositorClient::qt,
                                                  {100 * unit, 60 * unit, 240 * unit, 160 * unit});
        dragToFirstZone(title);
        if (std::floor(scale) == scale) {
            EXPECT_TRUE(waitUntil([&] {
                return OverlayEdges(session.picture(), scale).areCrispOn(ground);
            })) << session.describe();
        }
        drop();
        EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
    }
};

} // namespace

TEST_P(ProgramOnTwoMonitors, ShowsTheZonesOfTheOneUnderThePointerAndEndsInThem) {
    const auto& [name, second, client] = GetParam();
    expectEachDisplaysOwnZones(session.startClient(client, start), session.workArea(second.place));
}

TEST_P(PanelOnTwoMonitors, OpensOnTheOneOfItsItemOrOfThePointerAndOffersThatOnesZones) {
    const auto& [name, second, client] = GetParam();
    const auto thirdOfSecond = [&] {
        return frameOf(ZoneLayout::thirds().zones[0], session.workArea(second.place));
    };
    const QString title = session.startClient(client, start);
    openPanel();
    expectPanelBelowItem();
    snapByThePanel();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
    closePanel();

    const QPoint onSecond = session.workArea(second.place).center() - QPoint(0, 100);
    session.input().move(onSecond);
    startAgain();
    ASSERT_TRUE(waitUntil([&] { return isPanelReady(); })) << session.describe();
    const QRect ground = panelGround();
    const int gap = panelGap * unitsPerPoint(onSecond);
    const int lowest = session.workArea(second.place).bottom() - gap;
    EXPECT_TRUE(session.workArea(second.place).contains(ground));
    EXPECT_NEAR(QRectF(ground).center().x(), onSecond.x() + 0.5, 0.5);
    EXPECT_EQ(ground.top(), std::min(onSecond.y() + gap, lowest + 1 - ground.height()));
    snapByThePanel();
    EXPECT_TRUE(endsIn(title, thirdOfSecond())) << session.describe();
    closePanel();

    // The bar goes to the other display, and the item with it.
    session.arrange({{}, second}, 1);
    ASSERT_TRUE(waitUntil([&] {
        item = session.item();
        return item.width() > 10 && item.top() == second.place.y() &&
               item.left() > second.place.x() + 100;
    })) << session.describe();
    session.place(title, start);
    openPanel();
    expectPanelBelowItem();
    snapByThePanel();
    EXPECT_TRUE(endsIn(title, thirdOfSecond())) << session.describe();
}

TEST(ProgramAtAnyScale, ShowsTheZonesAndEndsInThemAtEveryOneThatTheShellOffers) {
    std::size_t count = 1;
    for (std::size_t index = 0; index < count; ++index) {
        Bench bench;
        const std::vector<double> scales = bench.session.offeredScales();
        count = scales.size();
        ASSERT_GE(count, 2U);
        bench.expectToSnapAt(scales[index]);
    }
}

TEST(ProgramAtAnyScale, DoesSoAtFractionsWhereTheUserHasToAskForThem) {
    Bench bench;
    bench.session.offerFractionalScales();
    const std::vector<double> scales = bench.session.offeredScales();
    const auto scale = std::find_if(scales.begin(), scales.end(),
                                    [](double offered) { return std::abs(offered - 1.25) < 0.01; });
    ASSERT_NE(scale, scales.end());
    bench.expectToSnapAt(*scale);
}

} // namespace tilewright::testing
