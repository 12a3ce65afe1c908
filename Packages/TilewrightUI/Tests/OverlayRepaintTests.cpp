#include "OverlayFixture.h"

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;

/// Two halves, shown by somebody who paints the view while its widget stays hidden.
class OverlayRepaintTest : public OverlayFixture {
protected:
    OverlayRepaintTest() {
        show({makeZone(0, 0, 0.5, 1), makeZone(0.5, 0, 0.5, 1)});
        view.setRepaint([this](const QRegion& region) { told += region; });
        view.setShown(true);
        static_cast<void>(picture());
        told = {};
    }
    /// As of the last time that this was asked.
    [[nodiscard]] QRegion toldSince() { return std::exchange(told, {}); }

    const QRegion left{QRect(3, 3, 494, 794)};
    const QRegion right{QRect(503, 3, 494, 794)};
    QRegion told;
};

TEST_F(OverlayRepaintTest, TellsTheTileThatLooksDifferentInEachFrameOfItsFade) {
    highlight(zone(0).id);
    const QImage before = picture();
    int frames = 0;
    while (loop().activeTimerCount() > 0 && frames < 100) {
        loop().advance(16ms);
        EXPECT_EQ(toldSince(), left);
        ++frames;
    }
    EXPECT_GT(frames, 4);
    EXPECT_LT(frames, 100);
    EXPECT_NE(picture(), before);
}

TEST_F(OverlayRepaintTest, TellsBothTilesWhenTheHighlightMovesOn) {
    highlight(zone(0).id);
    loop().advance(200ms);
    static_cast<void>(toldSince());
    highlight(zone(1).id);
    loop().advance(50ms);
    EXPECT_EQ(toldSince(), left + right);
}

TEST_F(OverlayRepaintTest, TellsAtOnceAndWithoutAFadeWhatChangesWhileNobodySeesIt) {
    view.setShown(false);
    highlight(zone(0).id);
    loop().advance(1ms);
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    EXPECT_EQ(toldSince(), left);
    view.setShown(true);
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    EXPECT_TRUE(toldSince().isEmpty());
    EXPECT_TRUE(looksLike(shadeOf(pictureOver(white).pixelColor(250, 5)), amber));
}

TEST_F(OverlayRepaintTest, TellsAllThatItsFadesHadYetToDoOnceItIsNotSeenAnyMore) {
    highlight(zone(0).id);
    loop().advance(32ms);
    static_cast<void>(toldSince());
    view.setShown(false);
    EXPECT_EQ(toldSince(), left);
    EXPECT_EQ(loop().activeTimerCount(), 0U);
}

TEST_F(OverlayRepaintTest, TellsNoMoreOnceItIsTakenBack) {
    view.setRepaint({});
    highlight(zone(1).id);
    loop().advance(200ms);
    EXPECT_TRUE(told.isEmpty());
}

TEST_F(OverlayRepaintTest, TellsNothingWhileItIsPaintedAsItIs) {
    static_cast<void>(picture(1.5));
    EXPECT_TRUE(told.isEmpty());
}

} // namespace
} // namespace tilewright::testing
