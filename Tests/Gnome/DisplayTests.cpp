// The program with its companion on other displays than the one plain one, in sessions of GNOME
// Shell.

#include "ProgramInGnome.h"

#include <OverlayEdges.h>
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

} // namespace

TEST_P(ProgramOnTwoMonitors, ShowsTheZonesOfTheOneUnderThePointerAndEndsInThem) {
    const auto& [name, second, client] = GetParam();
    expectEachDisplaysOwnZones(session.startClient(client, start), session.workArea(second.place));
}

TEST(ProgramAtAnyScale, ShowsTheZonesAndEndsInThemAtEveryOneThatTheShellOffers) {
    // A session for each: clients take a while to follow a change.
    struct Bench : ProgramInGnome {
        void TestBody() override {}
    };
    std::size_t count = 1;
    for (std::size_t index = 0; index < count; ++index) {
        Bench bench;
        const std::vector<double> scales = bench.session.offeredScales();
        count = scales.size();
        ASSERT_GE(count, 2U);
        const double scale = scales[index];
        SCOPED_TRACE(scale);
        bench.session.arrange({{{}, scale}});
        const QColor ground = bench.session.pixel(bench.workArea().center());
        // Small enough to leave both edges that are looked at on the bare ground.
        const int unit = bench.unitsPerPoint({});
        const QString title = bench.session.startClient(
            CompositorClient::qt, {100 * unit, 60 * unit, 240 * unit, 160 * unit});
        bench.dragToFirstZone(title);
        if (std::floor(scale) == scale) {
            EXPECT_TRUE(waitUntil([&] {
                return OverlayEdges(bench.session.picture(), scale).areCrispOn(ground);
            })) << bench.session.describe();
        }
        bench.drop();
        EXPECT_TRUE(bench.endsIn(title, bench.zone(0))) << bench.session.describe();
    }
}

} // namespace tilewright::testing
