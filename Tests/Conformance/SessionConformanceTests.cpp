// What every platform has to tell of the session: instances, wishes, permission, displays, power.

#include "PlatformWorld.h"

#include <QDir>
#include <QWidget>
#include <vector>

using namespace std::chrono_literals;

namespace tilewright::testing {

TEST_P(PlatformConformance, IsTheFirstInstanceAndHearsOfALaterOne) {
    InstanceActivation& activation = platform().instanceActivation;
    int requests = 0;
    QObject::connect(&activation, &InstanceActivation::activationRequested, &activation,
                     [&] { ++requests; });
    EXPECT_EQ(activation.claim(), InstanceActivation::Claim::first);
    EXPECT_EQ(requests, 0);
    world->startLaterInstance();
    EXPECT_TRUE(world->waitUntil([&] { return requests == 1; }));
}

TEST_P(PlatformConformance, GivesWayToAnEarlierInstanceAndAsksItToShowItself) {
    world->startEarlierInstance();
    InstanceActivation& activation = platform().instanceActivation;
    int requests = 0;
    QObject::connect(&activation, &InstanceActivation::activationRequested, &activation,
                     [&] { ++requests; });
    EXPECT_EQ(activation.claim(), InstanceActivation::Claim::another);
    EXPECT_TRUE(world->waitUntil([&] { return world->isEarlierInstanceAsked(); }));
    EXPECT_EQ(requests, 0);
}

TEST_P(PlatformConformance, FollowsTheWishForLessMotion) {
    Appearance& appearance = platform().appearance;
    EXPECT_FALSE(appearance.prefersReducedMotion().value_or(false));
    int changes = 0;
    QObject::connect(&appearance, &Appearance::prefersReducedMotionChanged, &appearance,
                     [&] { ++changes; });
    int expected = 0;
    for (const bool isReduced : {true, false, true}) {
        world->wishReducedMotion(isReduced);
        EXPECT_TRUE(world->waitUntil([&] {
            return appearance.prefersReducedMotion() == isReduced && changes == expected + 1;
        }));
        ++expected;
    }
}

TEST_P(PlatformConformance, TellsOfTheWishForDarkColoursWhereQtDoesNotHearOfIt) {
    Appearance& appearance = platform().appearance;
    EXPECT_FALSE(appearance.prefersDark());
    int changes = 0;
    QObject::connect(&appearance, &Appearance::prefersDarkChanged, &appearance, [&] { ++changes; });
    const bool isTold = world->wishDark(true);
    EXPECT_TRUE(world->waitUntil(
        [&] { return appearance.prefersDark() == isTold && changes == (isTold ? 1 : 0); }));
    static_cast<void>(world->wishDark(false));
    EXPECT_TRUE(
        world->waitUntil([&] { return !appearance.prefersDark() && changes == (isTold ? 2 : 0); }));
}

TEST_P(PlatformConformance, KnowsWhetherTheDesktopBlendsWindows) {
    const Appearance& appearance = platform().appearance;
    EXPECT_EQ(appearance.blendsWindows(), world->blendsWindows());
    world->startBlending();
    EXPECT_TRUE(world->waitUntil([&] { return appearance.blendsWindows(); }));
}

TEST_P(PlatformConformance, TellsWhenThePermissionGoesAndComes) {
    Accessibility& accessibility = platform().accessibility;
    EXPECT_TRUE(accessibility.isTrusted());
    EXPECT_TRUE(accessibility.requestTrust());
    std::vector<bool> told;
    QObject::connect(&accessibility, &Accessibility::trustChanged, &accessibility,
                     [&] { told.push_back(accessibility.isTrusted()); });
    world->setTrust(false);
    EXPECT_TRUE(world->waitUntil([&] { return told == std::vector{false}; }));
    EXPECT_FALSE(accessibility.isTrusted());
    world->setTrust(true);
    EXPECT_TRUE(world->waitUntil([&] { return told == std::vector{false, true}; }));
    EXPECT_TRUE(accessibility.isTrusted());
}

TEST_P(PlatformConformance, TellsWhenTheUserWorksInAnotherWindow) {
    Workspace& workspace = platform().workspace;
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    std::optional<ProcessID> seen;
    QObject::connect(&workspace, &Workspace::activeWindowChanged, &workspace,
                     [&] { seen = workspace.frontmostApplication(); });
    process = world->openWindow(opened);
    EXPECT_TRUE(world->waitUntil([&] { return seen == process; }));
}

TEST_P(PlatformConformance, BringsThisApplicationForward) {
    QWidget own;
    own.resize(200, 100);
    own.show();
    ASSERT_TRUE(openKnownWindow());
    ASSERT_TRUE(world->waitUntil([&] { return !world->isThisApplicationInFront(); }));
    platform().workspace.activateThisApplication();
    EXPECT_TRUE(world->waitUntil([&] { return world->isThisApplicationInFront(); }));
}

TEST_P(PlatformConformance, FindsTheDisplayAtAPointAndTheNearestOne) {
    const Screens& displays = platform().screens;
    const ScreenPtr only = screens().front();
    const AppKitRect frame = only->frame();
    EXPECT_EQ(displays.at(frame.center()), only);
    EXPECT_EQ(displays.at({frame.minX(), frame.minY()}), only);
    for (const AppKitPoint outside : {AppKitPoint{frame.maxX(), 10}, AppKitPoint{-1, -1}}) {
        EXPECT_EQ(displays.at(outside), nullptr);
        EXPECT_EQ(displays.nearest(outside), only);
    }
}

TEST_P(PlatformConformance, CountsLikeQtFromTheTopLeftCorner) {
    const ScreenPtr screen = screens().front();
    const AppKitRect frame = screen->frame();
    const QtSpace space = platform().screens.qtSpace(*screen);
    EXPECT_EQ(space.toQt({0, frame.maxY() - 40, 100, 40}), (QtRect{0, 0, 100, 40}));
    EXPECT_EQ(space.toAppKit({10, 20, 30, 40}), (AppKitRect{10, frame.maxY() - 60, 30, 40}));
    EXPECT_EQ(space.toAppKit(space.toQt(frame)), frame);
}

TEST_P(PlatformConformance, LetsTheDesktopCountThePowerAssertionsThatAreHeld) {
    PowerAssertions& assertions = platform().powerAssertions;
    const QString type = QStringLiteral("PreventUserIdleDisplaySleep");
    const auto isHeldSoon = [&](int count) {
        return world->waitUntil([&] { return world->heldAssertions() == count; });
    };
    ASSERT_EQ(world->heldAssertions(), 0);
    const auto first = assertions.create(type, 255, QStringLiteral("first"));
    EXPECT_EQ(first.status, 0);
    EXPECT_TRUE(isHeldSoon(1));
    const auto second = assertions.create(type, 255, QStringLiteral("second"));
    EXPECT_TRUE(isHeldSoon(2));
    assertions.release(first.id);
    EXPECT_TRUE(isHeldSoon(1));
    assertions.release(first.id);
    assertions.release(second.id);
    EXPECT_TRUE(isHeldSoon(0));
}

TEST_P(PlatformConformance, HasTheFolderForApplicationDataAmongTheUsersOwn) {
    const auto folder = platform().applicationSupport.folder();
    ASSERT_TRUE(folder);
    EXPECT_TRUE(QDir::cleanPath(*folder).startsWith(QDir::cleanPath(world->home())))
        << folder->toStdString();
}

TEST_P(PlatformConformance, RunsWhatATaskPostsOnALaterTurnAndEndsATimerFromWithin) {
    MainLoop& loop = platform().mainLoop;
    const auto start = loop.now();
    bool isInside = false;
    bool wasInside = true;
    int posted = 0;
    loop.post([&] {
        isInside = true;
        loop.post([&] {
            wasInside = isInside;
            ++posted;
        });
        isInside = false;
    });
    int firings = 0;
    int others = 0;
    std::shared_ptr<Timer> ending;
    ending = loop.scheduleRepeating(1ms, [&] {
        ++firings;
        ending->invalidate();
    });
    const auto other = loop.scheduleRepeating(1ms, [&] { ++others; });
    ASSERT_TRUE(world->waitUntil([&] { return others >= 3 && posted == 1; }));
    other->invalidate();
    EXPECT_FALSE(wasInside);
    EXPECT_EQ(firings, 1);
    EXPECT_GE(loop.now(), start);
}

} // namespace tilewright::testing
