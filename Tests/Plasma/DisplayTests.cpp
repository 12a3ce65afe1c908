// The program with its companion on other displays than the one plain one, in sessions of KWin.

#include "ProgramInPlasma.h"

#include <OverlayEdges.h>

namespace tilewright::testing {
namespace {

/// Two displays, the second one with so many pixels along each unit.
struct ProgramOnTwoDisplays : ProgramInPlasma, ::testing::WithParamInterface<double> {
    ProgramOnTwoDisplays()
        : ProgramInPlasma("control", {.scales = {1, GetParam()}}) {}
};

INSTANTIATE_TEST_SUITE_P(Of, ProgramOnTwoDisplays, ::testing::Values(1, 1.5),
                         [](const auto& scale) {
                             return "100And" + QString::number(scale.param * 100).toStdString();
                         });

/// A display with as many pixels along each unit.
struct ProgramAtScale : ProgramInPlasma, ::testing::WithParamInterface<double> {
    ProgramAtScale()
        : ProgramInPlasma("control", {.scales = {GetParam()}}) {}
};

INSTANTIATE_TEST_SUITE_P(Of, ProgramAtScale, ::testing::Values(1.25, 1.5, 2),
                         [](const auto& scale) {
                             return QString::number(scale.param * 100).toStdString();
                         });

} // namespace

TEST_P(ProgramOnTwoDisplays, ShowsTheZonesOfTheOneUnderThePointerAndEndsInThem) {
    // KWin by itself clears what lies bare on the first one only.
    static_cast<void>(session.startClient(CompositorClient::qt, session.displays()[1]));
    expectEachDisplaysOwnZones(session.startClient(CompositorClient::qt, start),
                               session.displays()[1], session.roundOff());
}

TEST_P(ProgramAtScale, ShowsTheZonesPixelByPixelAndEndsInThem) {
    const QString title = session.startClient(CompositorClient::qt, {100, 100, 400, 300});
    dragToFirstZone(title);
    EXPECT_TRUE(waitUntil([&] {
        return OverlayEdges(session.picture(), GetParam()).areCrispOn(Qt::black);
    })) << session.describe();
    drop();
    EXPECT_TRUE(endsIn(title, zone(0), session.roundOff())) << session.describe();

    session.grab(title);
    session.input().pressKey(KernelKey::control);
    session.input().glide(zone(1).center());
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(1)); })) << session.describe();
    drop();
    EXPECT_TRUE(endsIn(title, zone(1), session.roundOff())) << session.describe();
}

} // namespace tilewright::testing
