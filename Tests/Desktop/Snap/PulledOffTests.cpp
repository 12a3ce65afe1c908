#include "SnapCases.h"

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

/// A maximised window that is taken by its title bar, above another window.
struct PulledOff : ::testing::TestWithParam<WindowManagerKind> {
    void SetUp() override { ASSERT_TRUE(desktop.startWindowManager(GetParam())); }

    DesktopSession desktop;
};

TEST_P(PulledOff, IsSnappedAndNotTheWindowBeneath) {
    SnapCases cases(desktop, QStringLiteral("control"));
    cases.pullOffMaximisedAboveAnother(ClientKind::qt, 2);
}

// jwm restores it where it was before, far from the pointer.
INSTANTIATE_TEST_SUITE_P(Under, PulledOff,
                         ::testing::Values(WindowManagerKind::jwm, WindowManagerKind::xfwm4),
                         [](const auto& parameter) { return name(parameter.param); });

} // namespace
} // namespace tilewright::testing
