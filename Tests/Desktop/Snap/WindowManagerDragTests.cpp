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

    DesktopSession desktop;
};

TEST_P(WindowManagerDrag, SnapsByControl) {
    SnapCases cases(desktop, QStringLiteral("control"));
    cases.dropInAZone(ClientKind::xterm, KeyTiming::beforeThePress, 0);
    cases.dropInAZone(ClientKind::gtkClientDecorated, KeyTiming::afterTheDragBegan, 1);
    cases.pullOffMaximised(ClientKind::qt, 2);
}

TEST_P(WindowManagerDrag, SnapsByShift) {
    SnapCases cases(desktop, QStringLiteral("shift"));
    cases.dropInAZone(ClientKind::qt, KeyTiming::afterTheDragBegan, 3);
    cases.dropInAZone(ClientKind::gtkClientDecorated, KeyTiming::beforeThePress, 2);
    cases.closeInMidDrag(ClientKind::xterm, 1);
}

TEST_P(WindowManagerDrag, SnapsByOption) {
    SnapCases cases(desktop, QStringLiteral("option"));
    cases.dropInAZone(ClientKind::xterm, KeyTiming::afterTheDragBegan, 1);
    cases.pressEscape(ClientKind::gtkClientDecorated, 0);
    cases.releaseTheKeyFirst(ClientKind::qt);
}

TEST_P(WindowManagerDrag, SnapsByCommand) {
    SnapCases cases(desktop, QStringLiteral("command"));
    cases.dropInAZone(ClientKind::gtkClientDecorated, KeyTiming::afterTheDragBegan, 3);
    cases.dropInAZone(ClientKind::xterm, KeyTiming::beforeThePress, 2);
}

TEST_P(WindowManagerDrag, SnapsAtTheScreensEdges) {
    SnapCases cases(desktop, QStringLiteral("control"));
    cases.dropAtTheEdges(ClientKind::qt, KeyTiming::afterTheDragBegan);
}

INSTANTIATE_TEST_SUITE_P(Under, WindowManagerDrag,
                         ::testing::Values(Desk{WindowManagerKind::xfwm4, Compositing::off},
                                           Desk{WindowManagerKind::xfwm4, Compositing::on},
                                           Desk{WindowManagerKind::marco, Compositing::off},
                                           Desk{WindowManagerKind::mutter, Compositing::on},
                                           Desk{WindowManagerKind::icewm, Compositing::off},
                                           Desk{WindowManagerKind::icewm, Compositing::on}),
                         nameOf);

} // namespace
} // namespace tilewright::testing
