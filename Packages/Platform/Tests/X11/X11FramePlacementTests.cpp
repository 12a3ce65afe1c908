#include <X11/X11FramePlacement.h>

#include <gtest/gtest.h>

using namespace tilewright;

namespace {

const QRect goal(100, 50, 600, 400);

/// A window with server-side decorations whose outer frame is this.
X11WindowFacts windowAt(const QRect& outer, X11Extents decorations = {2, 2, 20, 4}) {
    X11WindowFacts facts;
    facts.exists = facts.isManaged = true;
    facts.decorations = decorations;
    facts.client =
        outer.adjusted(decorations.left, decorations.top, -decorations.right, -decorations.bottom);
    return facts;
}

} // namespace

TEST(X11FramePlacement, AsksForTheFramesCornerAndTheClientsSize) {
    X11FramePlacement placement(goal);
    const auto action = placement.begin(windowAt({0, 0, 300, 300}));
    EXPECT_EQ(action.request, QRect(100, 50, 596, 376));
    EXPECT_TRUE(action.startsWaiting);
    EXPECT_FALSE(action.removesMaximized);
    EXPECT_FALSE(action.addsMaximized);
}

TEST(X11FramePlacement, ClearsAtOnceTheStateThatTheWindowManagersTilingMaySetUnseen) {
    X11FramePlacement placement(goal, std::make_shared<X11FramePlacement::CornerOffset>(),
                                X11FramePlacement::Tiling::likely);
    const auto action = placement.begin(windowAt({0, 0, 300, 300}));
    EXPECT_TRUE(action.removesMaximized);
    EXPECT_FALSE(action.addsMaximized);
    EXPECT_TRUE(action.request.has_value());
}

TEST(X11FramePlacement, ReachesBeyondTheFrameByAClientsOwnShadow) {
    X11FramePlacement placement(goal);
    X11WindowFacts facts = windowAt({0, 0, 300, 300}, {});
    facts.shadow = {26, 26, 23, 29};
    EXPECT_EQ(placement.begin(facts).request, QRect(74, 27, 652, 452));
}

TEST(X11FramePlacement, EndsOnceTheWindowIsThereAndStaysThere) {
    X11FramePlacement placement(goal);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    EXPECT_FALSE(placement.windowChanged(windowAt(goal)).isFinished);
    const auto end = placement.timePassed(windowAt(goal));
    EXPECT_TRUE(end.isFinished);
    EXPECT_FALSE(end.request.has_value());
}

TEST(X11FramePlacement, ClearsStatesFirstAndAsksWhenTheyAreGone) {
    X11FramePlacement placement(goal);
    X11WindowFacts pinned = windowAt({0, 0, 1920, 1080}, {});
    pinned.isMaximized = pinned.isFullscreen = pinned.isShaded = true;
    const auto clearing = placement.begin(pinned);
    EXPECT_TRUE(clearing.removesMaximized);
    EXPECT_TRUE(clearing.removesFullscreen);
    EXPECT_TRUE(clearing.removesShaded);
    EXPECT_FALSE(clearing.request.has_value());
    pinned.isFullscreen = false;
    EXPECT_FALSE(placement.windowChanged(pinned).request.has_value());
    // The extents of the restored window count, not those it had while it was maximised.
    EXPECT_EQ(placement.windowChanged(windowAt({0, 0, 300, 300})).request,
              QRect(100, 50, 596, 376));
}

TEST(X11FramePlacement, AsksAnywayWhenAStateDoesNotGo) {
    X11FramePlacement placement(goal);
    X11WindowFacts pinned = windowAt({0, 0, 1920, 1080});
    pinned.isMaximized = true;
    static_cast<void>(placement.begin(pinned));
    EXPECT_TRUE(placement.timePassed(pinned).request.has_value());
}

TEST(X11FramePlacement, AsksASecondTimeByWayOfTheMaximisedState) {
    X11FramePlacement placement(goal);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    const auto second = placement.timePassed(windowAt({0, 0, 960, 1080}));
    EXPECT_TRUE(second.addsMaximized);
    EXPECT_TRUE(second.removesMaximized);
    EXPECT_TRUE(second.request.has_value());
}

TEST(X11FramePlacement, StopsWhenTwoAttemptsEndAlike) {
    X11FramePlacement placement(goal);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    static_cast<void>(placement.timePassed(windowAt({0, 0, 960, 1080})));
    EXPECT_TRUE(placement.timePassed(windowAt({0, 0, 960, 1080})).isFinished);
}

TEST(X11FramePlacement, AsksAgainWhereNothingHasStirred) {
    const X11WindowFacts still = windowAt({0, 0, 300, 300});
    X11FramePlacement placement(goal);
    EXPECT_TRUE(placement.begin(still).request.has_value());
    EXPECT_TRUE(placement.timePassed(still).request.has_value());
    EXPECT_TRUE(placement.timePassed(still).request.has_value());
    EXPECT_TRUE(placement.timePassed(still).isFinished);
}

TEST(X11FramePlacement, AddsTheMaximisedStateOnceOnly) {
    X11FramePlacement placement(goal);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    EXPECT_TRUE(placement.timePassed(windowAt({1, 0, 960, 1080})).addsMaximized);
    const auto third = placement.timePassed(windowAt({2, 0, 960, 1080}));
    EXPECT_FALSE(third.addsMaximized);
    EXPECT_TRUE(third.removesMaximized);
}

TEST(X11FramePlacement, AsksThreeTimesAtMost) {
    X11FramePlacement placement(goal);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    EXPECT_TRUE(placement.timePassed(windowAt({1, 0, 960, 1080})).request.has_value());
    EXPECT_TRUE(placement.timePassed(windowAt({2, 0, 960, 1080})).request.has_value());
    EXPECT_TRUE(placement.timePassed(windowAt({3, 0, 960, 1080})).isFinished);
    EXPECT_FALSE(placement.timePassed(windowAt({4, 0, 960, 1080})).request.has_value());
}

TEST(X11FramePlacement, AcceptsWhatTheClientsLimitsExplain) {
    X11FramePlacement placement(goal);
    X11WindowFacts terminal = windowAt(QRect(goal.topLeft(), QSize(594, 398)));
    terminal.limits.base = {4, 4};
    terminal.limits.increment = {6, 10};
    // 596x376 less what is no whole character: 592x374.
    terminal.client.setSize({592, 374});
    EXPECT_TRUE(placement.isReached(terminal));
    terminal.client.setSize({586, 374});
    EXPECT_FALSE(placement.isReached(terminal));
}

TEST(X11FramePlacement, PutsARequestRightWhenDecorationsChangeUnderIt) {
    X11FramePlacement placement(goal);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300}, {})));
    const auto again = placement.windowChanged(windowAt({100, 50, 604, 424}));
    EXPECT_EQ(again.request, QRect(100, 50, 596, 376));
    EXPECT_FALSE(again.addsMaximized);
}

TEST(X11FramePlacement, ClearsAStateThatTheWindowManagersOwnTilingBringsBack) {
    X11FramePlacement placement(goal);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    X11WindowFacts tiled = windowAt({0, 0, 1920, 1080});
    tiled.isMaximized = true;
    EXPECT_TRUE(placement.windowChanged(tiled).removesMaximized);
    const auto again = placement.windowChanged(windowAt({0, 0, 300, 300}));
    EXPECT_TRUE(again.request.has_value());
    // The state is gone: nothing need flash up to free the window.
    EXPECT_FALSE(again.addsMaximized);
}

TEST(X11FramePlacement, LearnsThatTheCornerIsTakenForTheClients) {
    const auto known = std::make_shared<X11FramePlacement::CornerOffset>();
    X11FramePlacement placement(goal, known);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    const auto again = placement.timePassed(windowAt(goal.translated(-2, -20)));
    EXPECT_EQ(again.request, QRect(102, 70, 596, 376));
    X11FramePlacement next(goal, known);
    EXPECT_EQ(next.begin(windowAt({0, 0, 300, 300})).request, QRect(102, 70, 596, 376));
}

TEST(X11FramePlacement, KeepsWhatAnotherLearntWhileItWasUnderWayItself) {
    const auto known = std::make_shared<X11FramePlacement::CornerOffset>();
    X11FramePlacement first(goal, known);
    X11FramePlacement second(goal, known);
    static_cast<void>(first.begin(windowAt({0, 0, 300, 300})));
    static_cast<void>(second.begin(windowAt({0, 0, 300, 300})));
    const X11WindowFacts missed = windowAt(goal.translated(-2, -20));
    EXPECT_EQ(first.timePassed(missed).request, QRect(102, 70, 596, 376));
    // It had not been asked with that offset: that it missed does not speak against it.
    EXPECT_EQ(second.timePassed(missed).request, QRect(102, 70, 596, 376));
    EXPECT_TRUE(first.timePassed(windowAt(goal)).isFinished);
    EXPECT_TRUE(second.timePassed(windowAt(goal)).isFinished);
    EXPECT_EQ(known->offset, QPoint(2, 20));
}

TEST(X11FramePlacement, ForgetsACornerOffsetThatProvesWrong) {
    const auto known = std::make_shared<X11FramePlacement::CornerOffset>();
    *known = {{2, 2, 20, 4}, QPoint(2, 20)};
    X11FramePlacement placement(goal, known);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    EXPECT_EQ(placement.timePassed(windowAt(goal.translated(2, 20))).request,
              QRect(100, 50, 596, 376));
}
