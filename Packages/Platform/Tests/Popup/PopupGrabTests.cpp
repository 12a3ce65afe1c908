#include <FakeMainLoop.h>
#include <Popup/PopupGrab.h>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace tilewright::testing {

// Qt's offscreen desktop grants no grabs.

TEST(PopupGrab, AsksAgainForAsLongAsItIsRefused) {
    FakeMainLoop loop;
    QWindow window;
    PopupGrab grab(loop);
    grab.take(window);
    EXPECT_FALSE(grab.isHeld());
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(loop.activeTimerCount(), 1U);
        loop.advance(1s);
    }
    grab.release();
    EXPECT_EQ(loop.activeTimerCount(), 0U) << "nobody is asked any more";
}

TEST(PopupGrab, AsksNoMoreForAWindowThatIsGone) {
    FakeMainLoop loop;
    PopupGrab grab(loop);
    {
        QWindow window;
        grab.take(window);
    }
    loop.advance(1s);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
    grab.release();
}

} // namespace tilewright::testing
