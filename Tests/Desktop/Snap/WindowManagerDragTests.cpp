#include "SnapCases.h"

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

struct Desk {
    WindowManagerKind kind;
    Compositing compositing;
};

std::string nameOf(const ::testing::TestParamInfo<Desk>& info) {
    return std::string(name(info.param.kind)) +
           (info.param.compositing == Compositing::on ? "Composited" : "Plain");
}

/// Each case once, its values so that every two of modifier, client and timing meet.
struct WindowManagerDrag : ::testing::TestWithParam<Desk> {
    void SetUp() override {
        ASSERT_TRUE(desktop.startWindowManager(GetParam().kind, GetParam().compositing));
    }

    /// Mutter 43, and muffin, which was made from it, at times end by an X error of their own when
    /// a window closes that they move, mutter with no other program about as well: they are started
    /// once more then.
    std::function<bool()> restart() {
        if (GetParam().kind != WindowManagerKind::mutter &&
            GetParam().kind != WindowManagerKind::muffin)
            return {};
        return
            [this] { return desktop.startWindowManager(GetParam().kind, GetParam().compositing); };
    }

    /// A client that draws its own bar. With i3 its wish to be moved is at times not taken up, for
    /// as long as the button is held; an ordinary window stands in for it there.
    static ClientKind ownBar() {
        return GetParam().kind == WindowManagerKind::i3 ? ClientKind::qt
                                                        : ClientKind::gtkClientDecorated;
    }

    /// Where a window opens that is moved while Shift is held. Marco, mutter and muffin make it
    /// jump to the edges round about: away from the pointer, perhaps before the program looks, and
    /// the focused window would stand in for it. In the corner it stays.
    static QPoint placeForShift() {
        const bool jumps = GetParam().kind == WindowManagerKind::marco ||
                           GetParam().kind == WindowManagerKind::mutter ||
                           GetParam().kind == WindowManagerKind::muffin;
        return jumps ? QPoint(0, 0) : QPoint(360, 220);
    }

    /// Where the next window opens after one that closed while it was moved with Shift. KWin, from
    /// 6 on, leaves the outline of the tile in the middle then, with no other program about as
    /// well, and a press there goes to the outline.
    static QPoint placeAfterShift() {
        return GetParam().kind == WindowManagerKind::kwin ? QPoint(10, 40) : QPoint(420, 260);
    }

    DesktopSession desktop;
};

TEST_P(WindowManagerDrag, SnapsByControl) {
    SnapCases cases(desktop, QStringLiteral("control"));
    cases.dropInAZone(ClientKind::xterm, KeyTiming::beforeThePress, 0);
    cases.dropInAZone(ownBar(), KeyTiming::afterTheDragBegan, 1);
    // i3's floating windows know no such state, and awesome lets nobody but its user end it.
    if (GetParam().kind == WindowManagerKind::i3 || GetParam().kind == WindowManagerKind::awesome)
        cases.dropInAZone(ClientKind::qt, KeyTiming::beforeThePress, 2);
    else
        cases.pullOffMaximised(ClientKind::qt, KeyTiming::beforeThePress, 2);
}

TEST_P(WindowManagerDrag, SnapsByShift) {
    SnapCases cases(desktop, QStringLiteral("shift"), restart());
    cases.dropInAZone(ClientKind::qt, KeyTiming::afterTheDragBegan, 3);
    cases.dropInAZone(ownBar(), KeyTiming::beforeThePress, 2);
    cases.closeInMidDrag(ClientKind::xterm, KeyTiming::afterTheDragBegan, 1, placeForShift(),
                         placeAfterShift());
}

TEST_P(WindowManagerDrag, SnapsByOption) {
    SnapCases cases(desktop, QStringLiteral("option"));
    cases.dropInAZone(ClientKind::xterm, KeyTiming::afterTheDragBegan, 1);
    cases.pressEscape(ownBar(), KeyTiming::afterTheDragBegan, 0);
    // What a window manager has not seen by the time that it ends would come to pass in the next
    // drag: muffin then resizes this window.
    cases.releaseTheKeyFirst(ClientKind::qt, {KeyTiming::inMidDrag});
}

TEST_P(WindowManagerDrag, SnapsByCommand) {
    SnapCases cases(desktop, QStringLiteral("command"), restart());
    cases.dropInAZone(ownBar(), KeyTiming::afterTheDragBegan, 3);
    cases.dropInAZone(ClientKind::xterm, KeyTiming::beforeThePress, 2);
    cases.closeInMidDrag(ClientKind::qt, KeyTiming::beforeThePress, 1);
}

TEST_P(WindowManagerDrag, SnapsAtTheScreensEdges) {
    SnapCases cases(desktop, QStringLiteral("control"));
    cases.dropAtTheEdges(ClientKind::qt, KeyTiming::afterTheDragBegan);
}

INSTANTIATE_TEST_SUITE_P(Under, WindowManagerDrag,
                         ::testing::Values(Desk{WindowManagerKind::xfwm4, Compositing::off},
                                           Desk{WindowManagerKind::xfwm4, Compositing::on},
                                           Desk{WindowManagerKind::kwin, Compositing::off},
                                           Desk{WindowManagerKind::kwin, Compositing::on},
                                           Desk{WindowManagerKind::marco, Compositing::off},
                                           Desk{WindowManagerKind::marco, Compositing::on},
                                           Desk{WindowManagerKind::mutter, Compositing::on},
                                           Desk{WindowManagerKind::muffin, Compositing::on},
                                           Desk{WindowManagerKind::fluxbox, Compositing::off},
                                           Desk{WindowManagerKind::i3, Compositing::off},
                                           Desk{WindowManagerKind::icewm, Compositing::off},
                                           Desk{WindowManagerKind::icewm, Compositing::on},
                                           Desk{WindowManagerKind::awesome, Compositing::off},
                                           Desk{WindowManagerKind::pekwm, Compositing::off},
                                           Desk{WindowManagerKind::wmaker, Compositing::off}),
                         nameOf);

} // namespace
} // namespace tilewright::testing
