#include <X11/X11FramePlacement.h>

#include <gtest/gtest.h>

using namespace tilewright;

namespace {

using Way = X11FramePlacement::Way;

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
    X11FramePlacement placement(goal, std::make_shared<X11FramePlacement::Manners>(),
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
    EXPECT_EQ(placement.timePassed(still).way, Way::hint);
    EXPECT_EQ(placement.timePassed(still).way, Way::hint);
    // What clients themselves ask for is the last thing that may be heard.
    EXPECT_EQ(placement.timePassed(still).way, Way::configure);
    EXPECT_EQ(placement.timePassed(still).way, Way::configure);
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
    const auto known = std::make_shared<X11FramePlacement::Manners>();
    X11FramePlacement placement(goal, known);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    const auto again = placement.timePassed(windowAt(goal.translated(-2, -20)));
    EXPECT_EQ(again.request, QRect(102, 70, 596, 376));
    X11FramePlacement next(goal, known);
    EXPECT_EQ(next.begin(windowAt({0, 0, 300, 300})).request, QRect(102, 70, 596, 376));
}

TEST(X11FramePlacement, KeepsWhatAnotherLearntWhileItWasUnderWayItself) {
    const auto known = std::make_shared<X11FramePlacement::Manners>();
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
    EXPECT_EQ(known->corner.offset, QPoint(2, 20));
}

TEST(X11FramePlacement, ForgetsACornerOffsetThatProvesWrong) {
    const auto known = std::make_shared<X11FramePlacement::Manners>();
    known->corner = {{2, 2, 20, 4}, QPoint(2, 20)};
    X11FramePlacement placement(goal, known);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    EXPECT_EQ(placement.timePassed(windowAt(goal.translated(2, 20))).request,
              QRect(100, 50, 596, 376));
}

TEST(X11FramePlacement, AsksAsClientsDoWhereTheWindowManagerKnowsNoOtherWay) {
    const auto known = std::make_shared<X11FramePlacement::Manners>();
    known->way = Way::configure;
    X11FramePlacement placement(goal, known);
    const auto action = placement.begin(windowAt({0, 0, 300, 300}));
    EXPECT_EQ(action.way, Way::configure);
    EXPECT_EQ(action.request, QRect(100, 50, 596, 376));
}

TEST(X11FramePlacement, AsksAsClientsDoForThePointThatTheirGravityNames) {
    const auto known = std::make_shared<X11FramePlacement::Manners>();
    known->way = Way::configure;
    const auto askedWith = [&](xcb_gravity_t gravity) {
        X11WindowFacts facts = windowAt({0, 0, 300, 300});
        facts.gravity = gravity;
        return X11FramePlacement(goal, known).begin(facts).request->topLeft() - goal.topLeft();
    };
    EXPECT_EQ(askedWith(XCB_GRAVITY_NORTH_WEST), QPoint(0, 0));
    EXPECT_EQ(askedWith(XCB_GRAVITY_NORTH), QPoint(2, 0));
    EXPECT_EQ(askedWith(XCB_GRAVITY_NORTH_EAST), QPoint(4, 0));
    EXPECT_EQ(askedWith(XCB_GRAVITY_WEST), QPoint(0, 12));
    EXPECT_EQ(askedWith(XCB_GRAVITY_CENTER), QPoint(2, 12));
    EXPECT_EQ(askedWith(XCB_GRAVITY_EAST), QPoint(4, 12));
    EXPECT_EQ(askedWith(XCB_GRAVITY_SOUTH_WEST), QPoint(0, 24));
    EXPECT_EQ(askedWith(XCB_GRAVITY_SOUTH), QPoint(2, 24));
    EXPECT_EQ(askedWith(XCB_GRAVITY_SOUTH_EAST), QPoint(4, 24));
    EXPECT_EQ(askedWith(XCB_GRAVITY_STATIC), QPoint(2, 20));
}

TEST(X11FramePlacement, RemembersWhichWayWasHeard) {
    const auto known = std::make_shared<X11FramePlacement::Manners>();
    const X11WindowFacts still = windowAt({0, 0, 300, 300});
    X11FramePlacement placement(goal, known);
    static_cast<void>(placement.begin(still));
    for (int attempt = 0; attempt < 3; ++attempt)
        static_cast<void>(placement.timePassed(still));
    EXPECT_EQ(known->way, Way::hint);
    EXPECT_TRUE(placement.timePassed(windowAt(goal)).isFinished);
    EXPECT_EQ(known->way, Way::configure);
    EXPECT_EQ(X11FramePlacement(goal, known).begin(still).way, Way::configure);
}

namespace {

/// A placement under a window manager with these manners whose window has not stirred by the hint,
/// and is asked for as clients ask.
X11FramePlacement withoutAWord(const std::shared_ptr<X11FramePlacement::Manners>& known) {
    const X11WindowFacts still = windowAt({0, 0, 300, 300});
    X11FramePlacement placement(goal, known);
    static_cast<void>(placement.begin(still));
    static_cast<void>(placement.timePassed(still));
    static_cast<void>(placement.timePassed(still));
    EXPECT_EQ(placement.timePassed(still).way, Way::configure);
    return placement;
}

/// Where a window manager may put what asks as clients do: below a panel of another display.
const X11WindowFacts keptBelowAPanel = windowAt({100, 90, 600, 360});

} // namespace

TEST(X11FramePlacement, GoesBackToTheHintWhereTheOtherWayLeadsElsewhere) {
    const auto known = std::make_shared<X11FramePlacement::Manners>();
    X11FramePlacement placement = withoutAWord(known);
    const auto action = placement.timePassed(keptBelowAPanel);
    EXPECT_EQ(action.way, Way::hint);
    EXPECT_EQ(action.request, QRect(100, 50, 596, 376));
    EXPECT_FALSE(action.addsMaximized);
    EXPECT_TRUE(placement.timePassed(windowAt(goal)).isFinished);
    EXPECT_EQ(known->way, Way::hint);
}

TEST(X11FramePlacement, EndsWhereNeitherWayLeadsToTheGoal) {
    X11FramePlacement placement = withoutAWord(std::make_shared<X11FramePlacement::Manners>());
    EXPECT_EQ(placement.timePassed(keptBelowAPanel).way, Way::hint);
    EXPECT_EQ(placement.timePassed(keptBelowAPanel).way, Way::hint);
    EXPECT_TRUE(placement.timePassed(keptBelowAPanel).isFinished);
}

TEST(X11FramePlacement, DoesNotTakeABusyClientForAWindowManagerThatIgnoresTheHint) {
    const auto known = std::make_shared<X11FramePlacement::Manners>();
    X11FramePlacement first(goal, known);
    static_cast<void>(first.begin(windowAt({0, 0, 300, 300})));
    EXPECT_TRUE(first.timePassed(windowAt(goal)).isFinished);
    X11FramePlacement placement = withoutAWord(known);
    EXPECT_TRUE(placement.timePassed(windowAt(goal)).isFinished);
    EXPECT_EQ(X11FramePlacement(goal, known).begin(windowAt({0, 0, 300, 300})).way, Way::hint);
}

TEST(X11FramePlacement, FindsOutThatTheHintIsHeardAfterAll) {
    const auto known = std::make_shared<X11FramePlacement::Manners>();
    EXPECT_TRUE(withoutAWord(known).timePassed(windowAt(goal)).isFinished);
    X11FramePlacement placement(goal, known);
    EXPECT_EQ(placement.begin(windowAt({0, 0, 300, 300})).way, Way::configure);
    EXPECT_EQ(placement.timePassed(keptBelowAPanel).way, Way::hint);
    EXPECT_TRUE(placement.timePassed(windowAt(goal)).isFinished);
    EXPECT_EQ(known->way, Way::hint);
}

TEST(X11FramePlacement, NeverTriesAHintThatIsNotAnnounced) {
    const auto known = std::make_shared<X11FramePlacement::Manners>();
    known->way = Way::configure;
    known->announcesHint = false;
    X11FramePlacement placement(goal, known);
    static_cast<void>(placement.begin(windowAt({0, 0, 300, 300})));
    EXPECT_EQ(placement.timePassed(keptBelowAPanel).way, Way::configure);
    EXPECT_TRUE(placement.timePassed(keptBelowAPanel).isFinished);
}

TEST(X11FramePlacement, AcceptsThatAWindowTooLargeForItsPlaceIsPushedBackOnTheScreen) {
    X11FramePlacement placement(goal);
    X11WindowFacts large = windowAt(QRect(100, 50, 600, 400));
    large.limits.minimum = {696, 376};
    large.client.setSize({696, 376});
    static_cast<void>(placement.begin(large));
    large.client.translate(-100, 0);
    EXPECT_TRUE(placement.isReached(large));
    EXPECT_TRUE(placement.timePassed(large).isFinished);
    large.client.translate(-1, 0);
    EXPECT_FALSE(placement.isReached(large)) << "further than to the edge of its place";
    large.client.translate(101, -1);
    EXPECT_FALSE(placement.isReached(large)) << "elsewhere in the direction in which it fits";
}

namespace {

/// A client that draws its own shadow, its visible part like this.
X11WindowFacts shadowed(const QRect& visible, X11Extents shadow) {
    X11WindowFacts facts = windowAt(visible, {});
    facts.tellsShadow = true;
    facts.shadow = shadow;
    facts.client = visible.adjusted(-shadow.left, -shadow.top, shadow.right, shadow.bottom);
    return facts;
}

const X11Extents broad{26, 26, 23, 29};

/// A placement of a window that was maximised, with all done but that its shadow is not back.
X11FramePlacement withoutItsShadowYet() {
    X11FramePlacement placement(goal);
    X11WindowFacts maximized = shadowed({0, 0, 1920, 1080}, {});
    maximized.isMaximized = true;
    static_cast<void>(placement.begin(maximized));
    static_cast<void>(placement.windowChanged(shadowed({0, 0, 900, 700}, {})));
    const auto last = placement.timePassed(shadowed(goal, {}));
    EXPECT_FALSE(last.isFinished);
    EXPECT_TRUE(last.startsFollowing);
    return placement;
}

/// The same window once its client has drawn the shadow within its size.
X11WindowFacts withTheShadowBack() {
    X11WindowFacts facts = shadowed(goal, {});
    facts.shadow = broad;
    return facts;
}

} // namespace

TEST(X11FramePlacement, FollowsTheShadowThatComesBackAfterAMaximisedState) {
    X11FramePlacement placement = withoutItsShadowYet();
    const auto correction = placement.windowChanged(withTheShadowBack());
    EXPECT_EQ(correction.request, QRect(74, 27, 652, 452));
    EXPECT_FALSE(correction.startsWaiting);
    EXPECT_FALSE(placement.windowChanged(shadowed(goal, broad)).request.has_value());
    EXPECT_TRUE(placement.timePassed(shadowed(goal, broad)).isFinished);
}

TEST(X11FramePlacement, LeavesAWindowThatTheUserMovesBeforeItsShadowIsBack) {
    X11FramePlacement placement = withoutItsShadowYet();
    X11WindowFacts moved = withTheShadowBack();
    moved.client.translate(1, 0);
    EXPECT_FALSE(placement.windowChanged(moved).request.has_value());
    X11WindowFacts maximized = withTheShadowBack();
    maximized.isMaximized = true;
    const auto action = placement.windowChanged(maximized);
    EXPECT_FALSE(action.request.has_value());
    EXPECT_FALSE(action.removesMaximized);
}

TEST(X11FramePlacement, FollowsNoShadowWhereNothingWasMaximisedOrNoneIsDrawn) {
    X11FramePlacement plain(goal);
    static_cast<void>(plain.begin(shadowed({0, 0, 300, 300}, broad)));
    EXPECT_TRUE(plain.timePassed(shadowed(goal, broad)).isFinished);

    X11FramePlacement decorated(goal);
    X11WindowFacts maximized = windowAt({0, 0, 1920, 1080});
    maximized.isMaximized = true;
    static_cast<void>(decorated.begin(maximized));
    static_cast<void>(decorated.windowChanged(windowAt({0, 0, 300, 300})));
    EXPECT_TRUE(decorated.timePassed(windowAt(goal)).isFinished);
}
