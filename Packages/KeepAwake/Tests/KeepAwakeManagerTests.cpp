#include <FakePlatform.h>
#include <KeepAwake/KeepAwakeManager.h>

#include <gmock/gmock.h>

using namespace std::chrono_literals;
using namespace tilewright;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using tilewright::testing::FakeDesktop;
using tilewright::testing::FakeMainLoop;
using tilewright::testing::FakePlatform;
using tilewright::testing::FakePowerAssertions;

namespace {

/// What an observer reads of the manager when a change is announced: the values before it.
struct Seen {
    bool isActive;
    bool hasSession;
    double remainingSeconds;
    friend bool operator==(const Seen&, const Seen&) = default;
};

void PrintTo(const Seen& seen, std::ostream* stream) {
    *stream << "{active " << seen.isActive << ", session " << seen.hasSession << ", remaining "
            << seen.remainingSeconds << "}";
}

class KeepAwakeManagerTest : public ::testing::Test {
protected:
    void expectInactive() const {
        EXPECT_FALSE(manager.isActive());
        EXPECT_FALSE(manager.session().has_value());
        EXPECT_EQ(manager.remainingSeconds(), 0);
        EXPECT_THAT(power.held, IsEmpty());
        EXPECT_EQ(loop.activeTimerCount(), 0U);
    }

    void expectActive(const KeepAwakeSession& session, double remainingSeconds) const {
        EXPECT_TRUE(manager.isActive());
        EXPECT_EQ(manager.session(), session);
        EXPECT_EQ(manager.remainingSeconds(), remainingSeconds);
        EXPECT_EQ(power.held.size(), 1U);
        EXPECT_EQ(loop.activeTimerCount(), session.asTimed() ? 1U : 0U);
    }

    /// Records what observers see from now on.
    void observe() {
        QObject::connect(&manager, &ObservableObject::objectWillChange, &manager, [this] {
            seen.push_back(
                {manager.isActive(), manager.session().has_value(), manager.remainingSeconds()});
        });
    }

    FakeDesktop desktop;
    FakeMainLoop& loop = desktop.platform.fakeMainLoop;
    FakePowerAssertions& power = desktop.platform.fakePowerAssertions;
    KeepAwakeManager& manager = KeepAwakeManager::shared();
    std::vector<Seen> seen;
};

const auto indefinite = KeepAwakeSession::indefinite();
const auto quarter = KeepAwakeSession::timed(900);

} // namespace

TEST_F(KeepAwakeManagerTest, IsOneInstanceThatStartsInactive) {
    EXPECT_EQ(&manager, &KeepAwakeManager::shared());
    expectInactive();
    EXPECT_THAT(power.creations, IsEmpty());
}

TEST_F(KeepAwakeManagerTest, HoldsADisplaySleepAssertionUnderItsNameWhileASessionRuns) {
    manager.activate(indefinite);
    ASSERT_EQ(power.creations.size(), 1U);
    EXPECT_EQ(power.creations[0].type, QStringLiteral("PreventUserIdleDisplaySleep"));
    EXPECT_EQ(power.creations[0].level, 255U);
    EXPECT_EQ(power.creations[0].name, QStringLiteral("Tilewright keep-awake"));
    EXPECT_THAT(power.held, ElementsAre(1U));
    manager.deactivate();
    EXPECT_THAT(power.releases, ElementsAre(1U));
    expectInactive();
}

TEST_F(KeepAwakeManagerTest, AnIndefiniteSessionHasNoTimerAndNoRemainingSeconds) {
    manager.activate(indefinite);
    expectActive(indefinite, 0);
    loop.advance(10h);
    expectActive(indefinite, 0);
}

TEST_F(KeepAwakeManagerTest, ATimedSessionCountsDownOnceASecondAndEndsByItself) {
    manager.activate(quarter);
    expectActive(quarter, 900);
    for (int ticks = 1; ticks < 900; ++ticks) {
        loop.advance(999ms);
        ASSERT_EQ(manager.remainingSeconds(), 900 - ticks + 1);
        loop.advance(1ms);
        ASSERT_EQ(manager.remainingSeconds(), 900 - ticks);
    }
    expectActive(quarter, 1);
    loop.advance(1s);
    expectInactive();
    EXPECT_THAT(power.releases, ElementsAre(1U));
}

TEST_F(KeepAwakeManagerTest, ASessionOfZeroOrNegativeDurationEndsOnItsFirstTick) {
    for (const double duration : {0.0, -0.25, -3600.0}) {
        const auto session = KeepAwakeSession::timed(duration);
        manager.activate(session);
        expectActive(session, duration);
        loop.advance(999ms);
        expectActive(session, duration);
        loop.advance(1ms);
        expectInactive();
    }
}

TEST_F(KeepAwakeManagerTest, AFractionalDurationEndsAtTheFirstCountOfZeroOrLess) {
    const auto session = KeepAwakeSession::timed(90.5);
    manager.activate(session);
    loop.advance(1s);
    EXPECT_EQ(manager.remainingSeconds(), 89.5);
    loop.advance(89s);
    expectActive(session, 0.5);
    observe();
    loop.advance(1s);
    ASSERT_GE(seen.size(), 2U);
    EXPECT_EQ(seen[0].remainingSeconds, 0.5);
    EXPECT_EQ(seen[1].remainingSeconds, -0.5);
    expectInactive();
}

TEST_F(KeepAwakeManagerTest, ResumesATimedSessionWithWhatIsLeftOfIt) {
    manager.resume(quarter, 2);
    expectActive(quarter, 2);
    loop.advance(1s);
    expectActive(quarter, 1);
    loop.advance(1s);
    expectInactive();
}

TEST_F(KeepAwakeManagerTest, ResumesAnIndefiniteSessionAsItWas) {
    manager.resume(indefinite, 7);
    expectActive(indefinite, 0);
}

TEST_F(KeepAwakeManagerTest, ResumesNothingWithoutAnAssertion) {
    power.failure = 5;
    for (const auto& session : {indefinite, quarter}) {
        manager.resume(session, 2);
        expectInactive();
    }
}

TEST_F(KeepAwakeManagerTest, AFailedAssertionLeavesItInactive) {
    power.failure = 5;
    for (const auto& session : {indefinite, quarter}) {
        manager.activate(session);
        expectInactive();
    }
    EXPECT_THAT(power.releases, IsEmpty());
    power.failure = 0;
    manager.activate(indefinite);
    expectActive(indefinite, 0);
}

TEST_F(KeepAwakeManagerTest, AFailedAssertionEndsTheRunningSession) {
    for (const auto& running : {indefinite, quarter}) {
        power.failure = 0;
        manager.activate(running);
        power.failure = 5;
        manager.activate(quarter);
        expectInactive();
    }
    EXPECT_THAT(power.releases, ElementsAre(1U, 2U));
}

TEST_F(KeepAwakeManagerTest, ReplacingASessionReleasesTheOldAssertionBeforeItCreatesTheNew) {
    for (const auto& session : {quarter, quarter, indefinite, indefinite, quarter}) {
        manager.activate(session);
        expectActive(session, session.asTimed() ? 900 : 0);
        loop.advance(3s);
    }
    EXPECT_EQ(power.mostHeld, 1U);
    EXPECT_THAT(power.releases, ElementsAre(1U, 2U, 3U, 4U));
}

TEST_F(KeepAwakeManagerTest, ReplacingASessionRestartsTheSecond) {
    manager.activate(quarter);
    loop.advance(700ms);
    manager.activate(quarter);
    loop.advance(999ms);
    EXPECT_EQ(manager.remainingSeconds(), 900);
    loop.advance(1ms);
    EXPECT_EQ(manager.remainingSeconds(), 899);
}

TEST_F(KeepAwakeManagerTest, CanBeGivenItsOwnSessionAgain) {
    manager.activate(quarter);
    loop.advance(5s);
    manager.activate(*manager.session());
    expectActive(quarter, 900);
}

TEST_F(KeepAwakeManagerTest, AnnouncesEachAssignmentOfActivateInItsOrder) {
    observe();
    manager.activate(quarter);
    // The three of ending what runs, then session, isActive, remainingSeconds.
    EXPECT_THAT(seen,
                ElementsAre(Seen{false, false, 0}, Seen{false, false, 0}, Seen{false, false, 0},
                            Seen{false, false, 0}, Seen{false, true, 0}, Seen{true, true, 0}));
    seen.clear();
    manager.activate(indefinite);
    // An indefinite session assigns no remaining seconds.
    EXPECT_THAT(seen,
                ElementsAre(Seen{true, true, 900}, Seen{false, true, 900}, Seen{false, false, 900},
                            Seen{false, false, 0}, Seen{false, true, 0}));
}

TEST_F(KeepAwakeManagerTest, AnnouncesEachAssignmentOfDeactivateInItsOrder) {
    manager.activate(quarter);
    observe();
    manager.deactivate();
    EXPECT_THAT(
        seen, ElementsAre(Seen{true, true, 900}, Seen{false, true, 900}, Seen{false, false, 900}));
}

TEST_F(KeepAwakeManagerTest, AnnouncesEachTickOnce) {
    manager.activate(quarter);
    observe();
    loop.advance(2s);
    EXPECT_THAT(seen, ElementsAre(Seen{true, true, 900}, Seen{true, true, 899}));
}

TEST_F(KeepAwakeManagerTest, DeactivatingWithNothingRunningOnlyPublishesTheInactiveValues) {
    observe();
    manager.deactivate();
    EXPECT_THAT(seen,
                ElementsAre(Seen{false, false, 0}, Seen{false, false, 0}, Seen{false, false, 0}));
    EXPECT_THAT(power.creations, IsEmpty());
    EXPECT_THAT(power.releases, IsEmpty());
    expectInactive();
}

TEST_F(KeepAwakeManagerTest, ATickRunsOnALaterTurnThanItsTimer) {
    manager.activate(quarter);
    loop.fireRepeatingTimersOnce();
    EXPECT_EQ(manager.remainingSeconds(), 900);
    EXPECT_EQ(loop.postedCount(), 1U);
    loop.runPosted();
    EXPECT_EQ(manager.remainingSeconds(), 899);
}

TEST_F(KeepAwakeManagerTest, ATickPostedBeforeATimedSessionReplacedAnotherCountsForTheNewOne) {
    manager.activate(quarter);
    loop.fireRepeatingTimersOnce();
    const auto hour = KeepAwakeSession::timed(3600);
    manager.activate(hour);
    loop.runPosted();
    expectActive(hour, 3599);
}

TEST_F(KeepAwakeManagerTest, ATickPostedBeforeAnIndefiniteSessionBeganEndsIt) {
    manager.activate(quarter);
    loop.fireRepeatingTimersOnce();
    manager.activate(indefinite);
    observe();
    loop.runPosted();
    ASSERT_GE(seen.size(), 2U);
    EXPECT_EQ(seen[1], (Seen{true, true, -1}));
    expectInactive();
}

TEST_F(KeepAwakeManagerTest, ATickPostedBeforeTheSessionEndedLeavesItInactive) {
    manager.activate(quarter);
    loop.fireRepeatingTimersOnce();
    manager.deactivate();
    loop.runPosted();
    expectInactive();
    EXPECT_THAT(power.releases, ElementsAre(1U));
}

TEST_F(KeepAwakeManagerTest, ATickPostedBeforeTheSessionEndedCountsAllTheSame) {
    manager.activate(quarter);
    loop.fireRepeatingTimersOnce();
    manager.deactivate();
    observe();
    loop.runPosted();
    // The count itself, then the three of ending what no longer runs.
    EXPECT_THAT(seen, ElementsAre(Seen{false, false, 0}, Seen{false, false, -1},
                                  Seen{false, false, -1}, Seen{false, false, -1}));
}

TEST(KeepAwakeManagerTeardown, NeitherInvalidatesTheTimerNorReleasesTheAssertion) {
    FakePlatform platform;
    {
        const Platform::Installation installation(platform);
        KeepAwakeManager::shared().activate(quarter);
    }
    EXPECT_EQ(platform.fakeMainLoop.activeTimerCount(), 1U);
    EXPECT_THAT(platform.fakePowerAssertions.held, ElementsAre(1U));
    EXPECT_THAT(platform.fakePowerAssertions.releases, IsEmpty());
}

TEST(KeepAwakeManagerTeardown, LeavesATickThatDoesNothing) {
    FakePlatform platform;
    {
        const Platform::Installation installation(platform);
        KeepAwakeManager::shared().activate(KeepAwakeSession::timed(1));
        platform.fakeMainLoop.fireRepeatingTimersOnce();
    }
    EXPECT_EQ(platform.fakeMainLoop.postedCount(), 1U);
    platform.fakeMainLoop.runPosted();
    platform.fakeMainLoop.advance(5s);
    EXPECT_THAT(platform.fakePowerAssertions.held, ElementsAre(1U));
    const Platform::Installation installation(platform);
    EXPECT_FALSE(KeepAwakeManager::shared().isActive());
}
