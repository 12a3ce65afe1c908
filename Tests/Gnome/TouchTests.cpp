// The program with its companion in a session of GNOME Shell, used by fingers.

#include "ProgramInGnome.h"

namespace tilewright::testing {

TEST_F(ProgramInGnome, OpensItsPanelByTouchUsesWhatLiesInItAndClosesItSo) {
    session.input().move({300, 900});
    const auto openByTouch = [&] {
        session.tapScreen(item.center());
        return waitUntil([&] { return isPanelReady(); });
    };
    ASSERT_TRUE(openByTouch()) << session.describe();
    EXPECT_TRUE(session.frame(panelTitle).intersects(item.translated(0, item.height() + 20)));
    session.tapScreen(item.center());
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "the item";
    EXPECT_TRUE(staysTrue([&] { return !isPanelOpen(); }, std::chrono::milliseconds(300)));

    ASSERT_TRUE(openByTouch()) << session.describe();
    session.tapScreen({300, 900});
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "a touch outside";

    ASSERT_TRUE(openByTouch()) << session.describe();
    session.tapScreen(settingsInPanel());
    EXPECT_TRUE(waitUntil([&] { return isInFront(settingsTitle); }))
        << "what lies in it: the panel " << (isPanelOpen() ? "stays" : "is gone")
        << session.describe();
    EXPECT_FALSE(isPanelOpen());
}

} // namespace tilewright::testing
