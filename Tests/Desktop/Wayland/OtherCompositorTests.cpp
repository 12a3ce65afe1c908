// The real program where a compositor has layers and nothing else for it: alone on Wayland, and on
// the X server beside the compositor.

#include "OtherCompositor.h"

#include <QFileInfo>

namespace tilewright::testing {

using namespace std::chrono_literals;

TEST_P(OtherCompositor, ServesTheProgramByWhatItFinds) {
    runProgram();
    EXPECT_TRUE(hasLoaded(isOnX() ? "libqxcb.so" : "libqwayland"));
    EXPECT_FALSE(hasLoaded(isOnX() ? "libqwayland" : "libqxcb.so"));
    expectToRunAsTheOneInstanceUntilTold();
}

TEST_P(OtherCompositor, IsKeptFromIdlingWhileTheSwitchInThePanelIsOn) {
    runProgram();
    openPanel();
    pressSwitch();
    const QString mark = session->folder().filePath(u"idle"_s);
    Subprocess idler;
    ASSERT_TRUE(
        idler.start(u"swayidle"_s, {u"timeout"_s, u"1"_s, u"touch "_s + mark}, environment));
    EXPECT_TRUE(staysTrue([&] { return !QFileInfo::exists(mark); }, 4s));
    pressSwitch();
    EXPECT_TRUE(waitUntil([&] { return QFileInfo::exists(mark); }));
}

TEST_P(OtherCompositor, IsNotWhatWindowsCanBeMovedInAsTheAccessibilityTabSays) {
    runProgram();
    openSettings(u"Accessibility"_s);
    press(u"button"_s, u"Open Privacy & Security Settings"_s);
    const auto says = [&] {
        return shows(u"label"_s, u"Windows cannot be moved in this session"_s);
    };
    ASSERT_TRUE(waitUntil(says));
    press(u"button"_s, u"Close"_s);
    EXPECT_TRUE(waitUntil([&] { return !says(); }));
    EXPECT_TRUE(program.isRunning());
}

TEST_P(OtherCompositor, ShowsThePanelWhichEscapeClosesAndAnotherStartOpensAgain) {
    runProgram();
    for (int round = 0; round < 2; ++round) {
        const QImage before = session->picture();
        openPanel();
        EXPECT_TRUE(waitUntil([&] { return session->picture() != before; }));
        input->tap(KernelKey::escape);
        EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); }));
        EXPECT_TRUE(waitUntil([&] { return session->picture() == before; }));
    }
    EXPECT_TRUE(program.isRunning());
}

} // namespace tilewright::testing
