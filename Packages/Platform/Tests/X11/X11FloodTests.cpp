#include <X11/X11Flood.h>

#include <gtest/gtest.h>

namespace tilewright {
namespace {

TEST(X11Flood, GivesBackAfterEachSoManyEventsThatWereLeftOut) {
    X11Flood flood;
    flood.note(X11Flood::least - 1);
    EXPECT_EQ(flood.timesGivenBack(), 0U);
    flood.note(1);
    EXPECT_EQ(flood.timesGivenBack(), 1U);
    flood.note(X11Flood::least);
    EXPECT_EQ(flood.timesGivenBack(), 2U);
}

TEST(X11Flood, GivesBackOnceItIsCalmAfterManyHaveWaitedTogether) {
    X11Flood flood;
    flood.noteTogether(X11Flood::leastTogether);
    EXPECT_EQ(flood.timesGivenBack(), 0U) << "more may be waiting";
    flood.noteCalm();
    flood.noteCalm();
    EXPECT_EQ(flood.timesGivenBack(), 1U);
}

TEST(X11Flood, LeavesEverydayLifeAlone) {
    X11Flood flood;
    for (int i = 0; i < 100'000; ++i) {
        flood.noteTogether(X11Flood::leastTogether - 1);
        flood.noteCalm();
    }
    EXPECT_EQ(flood.timesGivenBack(), 0U);
}

} // namespace
} // namespace tilewright
