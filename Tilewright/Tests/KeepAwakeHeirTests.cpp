#include <FakePlatform.h>
#include <KeepAwake/KeepAwakeManager.h>
#include <Tilewright/KeepAwakeHeir.h>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace tilewright::testing {
namespace {

using Session = Legacy::Session;

class KeepAwakeHeirTest : public ::testing::Test {
protected:
    void begin(const std::optional<Session>& former) {
        heir.emplace(former, [this](const auto& session) { told = session; });
    }
    void expectRuns(const KeepAwakeSession& session, double remainingSeconds) {
        EXPECT_EQ(manager.session(), session);
        EXPECT_EQ(manager.remainingSeconds(), remainingSeconds);
        EXPECT_EQ(power.held.size(), 1U);
    }
    [[nodiscard]] Session endingIn(MainLoop::Interval left) const {
        return {quarter, loop.now() + left};
    }

    FakeDesktop desktop;
    FakeMainLoop& loop = desktop.platform.fakeMainLoop;
    FakePowerAssertions& power = desktop.platform.fakePowerAssertions;
    KeepAwakeManager& manager = KeepAwakeManager::shared();
    const KeepAwakeSession quarter = KeepAwakeSession::timed(900);
    const KeepAwakeSession indefinite = KeepAwakeSession::indefinite();
    std::optional<Session> told;
    std::optional<KeepAwakeHeir> heir;
};

} // namespace

TEST_F(KeepAwakeHeirTest, TakesUpTheSessionThatRan) {
    begin(Session{});
    expectRuns(indefinite, 0);
    EXPECT_EQ(told, Session{});
}

TEST_F(KeepAwakeHeirTest, TakesUpATimedSessionWithTheSameEnd) {
    const Session former = endingIn(100s);
    loop.advance(60s);
    begin(former);
    expectRuns(quarter, 40);
    EXPECT_EQ(told, former);
    loop.advance(39s);
    expectRuns(quarter, 1);
    loop.advance(1s);
    EXPECT_FALSE(manager.isActive());
}

TEST_F(KeepAwakeHeirTest, LeavesASessionAloneThatHasEndedMeanwhile) {
    const Session former = endingIn(10s);
    loop.advance(10s);
    begin(former);
    EXPECT_FALSE(manager.isActive());
    EXPECT_EQ(told, std::nullopt);
    EXPECT_TRUE(power.creations.empty());
}

TEST_F(KeepAwakeHeirTest, TellsEachSessionThatRuns) {
    told = Session{};
    begin(std::nullopt);
    EXPECT_EQ(told, std::nullopt);
    EXPECT_FALSE(manager.isActive());
    manager.activate(quarter);
    loop.runPosted();
    EXPECT_EQ(told, endingIn(900s));
    loop.advance(300s);
    EXPECT_EQ(told, endingIn(600s));
    manager.activate(indefinite);
    loop.runPosted();
    EXPECT_EQ(told, Session{});
    manager.deactivate();
    loop.runPosted();
    EXPECT_EQ(told, std::nullopt);
}

TEST_F(KeepAwakeHeirTest, AsksAgainWhereNothingKeepsTheComputerAwakeYet) {
    power.failure = 5;
    const Session former = endingIn(100s);
    begin(former);
    EXPECT_FALSE(manager.isActive());
    EXPECT_EQ(told, former) << "it is handed on all the same";
    loop.advance(5s);
    EXPECT_FALSE(manager.isActive());
    EXPECT_EQ(told, former);
    power.failure = 0;
    loop.advance(5s);
    EXPECT_TRUE(manager.isActive());
    EXPECT_LT(manager.remainingSeconds(), 95);
    EXPECT_EQ(told->end, former.end);
}

TEST_F(KeepAwakeHeirTest, GivesUpInTheEnd) {
    power.failure = 5;
    begin(Session{});
    loop.advance(2min);
    EXPECT_EQ(told, std::nullopt);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
    power.failure = 0;
    loop.advance(1h);
    EXPECT_FALSE(manager.isActive());
}

TEST_F(KeepAwakeHeirTest, DoesNotReplaceWhatTheUserHasChosenSince) {
    power.failure = 5;
    begin(Session{});
    power.failure = 0;
    manager.activate(quarter);
    loop.advance(1min);
    EXPECT_EQ(manager.session(), quarter);
    EXPECT_EQ(told->session, quarter);
}

} // namespace tilewright::testing
