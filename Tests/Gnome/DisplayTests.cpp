// The program with its companion on other displays than the one plain one, in sessions of GNOME
// Shell.

#include "ProgramInGnome.h"

#include <OverlayEdges.h>

namespace tilewright::testing {
namespace {

struct ProgramOnTwoMonitors : ProgramInGnome {
    ProgramOnTwoMonitors()
        : ProgramInGnome(QStringLiteral(TILEWRIGHT_PROGRAM), 2) {}
};

struct ProgramAtDoubleScale : ProgramInGnome {
    ProgramAtDoubleScale() { session.setScale(2); }
};

} // namespace

TEST_F(ProgramOnTwoMonitors, ShowsTheZonesOfTheOneUnderThePointerAndEndsInThem) {
    expectEachDisplaysOwnZones(session.startClient(CompositorClient::qt, start),
                               session.workArea(1));
}

TEST_F(ProgramAtDoubleScale, ShowsTheZonesPixelByPixelAndEndsInThem) {
    const QColor ground = session.pixel(workArea().center());
    // Small enough to leave both edges that are looked at on the bare ground.
    const int unit = unitsPerPoint();
    const QString title =
        session.startClient(CompositorClient::qt, {100 * unit, 60 * unit, 240 * unit, 160 * unit});
    dragToFirstZone(title);
    EXPECT_TRUE(waitUntil([&] { return OverlayEdges(session.picture(), 2).areCrispOn(ground); }))
        << session.describe();
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
}

} // namespace tilewright::testing
