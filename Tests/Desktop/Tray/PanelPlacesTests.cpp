// Where the panel opens where a point is more than a pixel, and where there are two monitors.

#include "TrayDesktop.h"

#include <Bars.h>
#include <Waiting.h>

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class PanelAtScale : public ::testing::TestWithParam<int> {
protected:
    [[nodiscard]] static double scale() { return GetParam() / 100.0; }
};

class PanelOnTwoMonitors : public ::testing::TestWithParam<int> {
protected:
    [[nodiscard]] static double scale() { return GetParam() / 100.0; }

    /// The second output's place: right of the first, whatever modes the server gave them.
    [[nodiscard]] QRect secondMonitor() {
        const QSize screen = desktop.inspector().screenSize();
        return {screen.width() / 2, 0, screen.width() - screen.width() / 2, screen.height()};
    }

    TrayDesktop desktop{XServer::twoOutputs()};
};

std::string scaleName(const ::testing::TestParamInfo<int>& parameter) {
    return std::to_string(parameter.param) + "Percent";
}

void expectBelow(const QRect& item, const QRect& panel, double scale) {
    EXPECT_GE(panel.top(), barHeight);
    EXPECT_LE(panel.top(), barHeight + 8 * scale) << "close to the bar";
    EXPECT_LE(panel.left(), item.center().x());
    EXPECT_GE(panel.right(), item.center().x());
}

} // namespace

TEST_P(PanelAtScale, OpensBelowItsItemWhollyOnTheScreen) {
    TrayDesktop desktop;
    startTint2(desktop.session());
    desktop.startProgram(scale());
    const QRect item = desktop.waitForItem();
    desktop.input().click(item.center());
    const QRect panel = desktop.waitForPanel();
    expectBelow(item, panel, scale());
    EXPECT_TRUE(QRect({}, desktop.inspector().screenSize()).contains(panel));
    desktop.input().tapKey(keysym::escape);
    EXPECT_TRUE(waitUntil([&] { return !desktop.panel(); }));

    // By the pointer, in a corner.
    desktop.input().move({1919, 1079});
    desktop.startAgain();
    EXPECT_TRUE(QRect({}, desktop.inspector().screenSize()).contains(desktop.waitForPanel()));
}

INSTANTIATE_TEST_SUITE_P(, PanelAtScale, ::testing::Values(125, 150, 200), scaleName);

TEST(PanelAboveABar, KeepsItsTopEdgeWhileItsSessionRowComesAndGoes) {
    TrayDesktop desktop;
    startTint2(desktop.session(), 0, BarEdge::bottom);
    desktop.startProgram();
    const QRect item = desktop.waitForItem();
    const int bar = desktop.inspector().screenSize().height() - barHeight;
    ASSERT_GE(item.top(), bar);
    std::vector<QRect> rests;
    const auto waitForRest = [&] {
        QRect last;
        EXPECT_TRUE(waitUntil([&] {
            last = desktop.panel().value_or(QRect());
            return (rests.empty() || last.height() != rests.back().height()) &&
                   staysTrue([&] { return desktop.panel() == last; },
                             std::chrono::milliseconds(150));
        }));
        EXPECT_LE(last.bottom(), bar) << "clear of the bar";
        rests.push_back(last);
    };
    desktop.input().click(item.center());
    waitForRest();
    // The first control is the switch.
    desktop.input().tapKey(keysym::tab);
    for (int toggling = 0; toggling < 3; ++toggling) {
        desktop.input().tapKey(keysym::space);
        waitForRest();
        EXPECT_EQ(rests.back().top(), rests.front().top());
    }
    // Opened without the row, which comes while it is open.
    desktop.input().tapKey(keysym::escape);
    ASSERT_TRUE(waitUntil([&] { return !desktop.panel(); }));
    const QRect without = rests.back();
    rests.clear();
    desktop.input().click(item.center());
    waitForRest();
    EXPECT_EQ(rests.front(), without);
    desktop.input().tapKey(keysym::tab);
    desktop.input().tapKey(keysym::space);
    waitForRest();
    EXPECT_EQ(rests.back().top(), without.top());
    EXPECT_GT(rests.back().height(), without.height());
}

TEST_P(PanelOnTwoMonitors, OpensOnTheMonitorOfItsItem) {
    startTint2(desktop.session(), 1);
    desktop.startProgram(scale());
    const QRect item = desktop.waitForItem();
    ASSERT_TRUE(secondMonitor().contains(item));
    desktop.input().click(item.center());
    const QRect panel = desktop.waitForPanel();
    expectBelow(item, panel, scale());
    EXPECT_TRUE(secondMonitor().contains(panel));
}

TEST_P(PanelOnTwoMonitors, OpensByThePointerOnThePointersMonitor) {
    startTint2(desktop.session());
    desktop.startProgram(scale());
    static_cast<void>(desktop.waitForItem());
    // On either side of the border between the two.
    desktop.input().move(secondMonitor().topLeft() + QPoint(0, 500));
    desktop.startAgain();
    EXPECT_TRUE(secondMonitor().contains(desktop.waitForPanel()));
    desktop.input().tapKey(keysym::escape);
    EXPECT_TRUE(waitUntil([&] { return !desktop.panel(); }));
    desktop.input().move(secondMonitor().topLeft() - QPoint(1, -500));
    desktop.startAgain();
    EXPECT_LT(desktop.waitForPanel().right(), secondMonitor().left());
}

INSTANTIATE_TEST_SUITE_P(, PanelOnTwoMonitors, ::testing::Values(100, 150, 200), scaleName);

} // namespace tilewright::testing
