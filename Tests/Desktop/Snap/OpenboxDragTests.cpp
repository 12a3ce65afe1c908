#include "SnapCases.h"

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

struct Combination {
    const char* modifier;
    Compositing compositing;
};

std::string nameOf(const ::testing::TestParamInfo<Combination>& info) {
    return std::string(info.param.modifier) +
           (info.param.compositing == Compositing::on ? "Composited" : "Plain");
}

struct OpenboxDrag : ::testing::TestWithParam<Combination> {
    void SetUp() override {
        ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox, GetParam().compositing));
        cases = std::make_unique<SnapCases>(desktop, QString::fromLatin1(GetParam().modifier));
    }

    /// Where both would take long: one timing with compositing, the other without.
    static KeyTiming timing() {
        return GetParam().compositing == Compositing::on ? KeyTiming::afterTheDragBegan
                                                         : KeyTiming::beforeThePress;
    }

    DesktopSession desktop;
    std::unique_ptr<SnapCases> cases;
};

TEST_P(OpenboxDrag, EveryKindOfWindowFillsTheZoneItIsDroppedInWheneverTheKeyIsPressed) {
    std::size_t zone = 0;
    for (const ClientKind kind : draggedClients) {
        for (const KeyTiming timing : {KeyTiming::beforeThePress, KeyTiming::afterTheDragBegan})
            cases->dropInZonesInTurn(kind, timing, zone++, 2);
    }
}

TEST_P(OpenboxDrag, NothingIsSnappedWhenTheKeyIsLetGoFirst) {
    for (const ClientKind kind : draggedClients)
        cases->releaseTheKeyFirst(kind, {KeyTiming::afterTheDragBegan, KeyTiming::beforeThePress});
}

TEST_P(OpenboxDrag, EscapeChangesNothingOfTheSnap) {
    for (const ClientKind kind : draggedClients) {
        for (const KeyTiming timing : {KeyTiming::beforeThePress, KeyTiming::afterTheDragBegan})
            cases->pressEscape(kind, timing, 1);
    }
}

TEST_P(OpenboxDrag, AWindowThatClosesDuringTheDragCostsNothing) {
    for (const ClientKind kind : draggedClients)
        cases->closeInMidDrag(kind, timing(), 2);
}

TEST_P(OpenboxDrag, AMaximisedWindowIsPulledOffIntoAZone) {
    for (const ClientKind kind : draggedClients)
        cases->pullOffMaximised(kind, timing(), 3);
}

TEST_P(OpenboxDrag, ADropAtTheScreensEdgeFillsTheZoneThere) {
    for (const ClientKind kind : draggedClients)
        cases->dropAtTheEdges(kind, timing());
}

INSTANTIATE_TEST_SUITE_P(Every, OpenboxDrag,
                         ::testing::Values(Combination{"control", Compositing::off},
                                           Combination{"control", Compositing::on},
                                           Combination{"shift", Compositing::off},
                                           Combination{"shift", Compositing::on},
                                           Combination{"option", Compositing::off},
                                           Combination{"option", Compositing::on},
                                           Combination{"command", Compositing::off},
                                           Combination{"command", Compositing::on}),
                         nameOf);

} // namespace
} // namespace tilewright::testing
