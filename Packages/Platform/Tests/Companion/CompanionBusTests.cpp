#include "MockCompanion.h"
#include "PrivateBus.h"

#include <Companion/CompanionDecoder.h>
#include <Platform/QtMainLoop.h>

#include <QSignalSpy>
#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace tilewright::testing {
namespace {

/// The real loop, whose time a test lets pass.
class LoopOfTheTest final : public MainLoop {
public:
    void post(Task task) override { real_.post(std::move(task)); }
    std::shared_ptr<Timer> scheduleOnce(Interval interval, Task task) override {
        return real_.scheduleOnce(interval, std::move(task));
    }
    std::shared_ptr<Timer> scheduleRepeating(Interval interval, Task task) override {
        return real_.scheduleRepeating(interval, std::move(task));
    }
    [[nodiscard]] Interval now() const override { return time; }

    Interval time{0};

private:
    QtMainLoop real_;
};

class CompanionBusTest : public ::testing::Test {
protected:
    CompanionBusTest() {
        QObject::connect(&companion, &CompanionBus::told, &companion,
                         [this](const CompanionMessage& message) { told.push_back(message); });
    }
    /// A shell whose companion may call.
    [[nodiscard]] std::unique_ptr<MockCompanion> makeShell() {
        auto shell = std::make_unique<MockCompanion>(bus.connect());
        EXPECT_TRUE(waitUntil([&] { return shell->seesProgram(); }));
        return shell;
    }
    [[nodiscard]] std::size_t drags() const {
        return static_cast<std::size_t>(
            std::count_if(told.begin(), told.end(), [](const CompanionMessage& message) {
                return std::holds_alternative<CompanionDrag>(message);
            }));
    }

    PrivateBus bus;
    LoopOfTheTest loop;
    MessageBus own{bus.connect()};
    CompanionOutbox outbox;
    CompanionBus companion{loop, own, outbox, QStringLiteral("org.gnome.Shell")};
    std::vector<CompanionMessage> told;
};

} // namespace

TEST_F(CompanionBusTest, TakesItsNameOnlyWhileThereIsACompositorToBeCalledBy) {
    const QDBusConnection other = bus.connect();
    PrivateBus::takeAllIn(own.connection());
    EXPECT_TRUE(companion.compositor().isEmpty());
    const auto shell = makeShell();
    EXPECT_FALSE(companion.compositor().isEmpty());
}

TEST_F(CompanionBusTest, HandsOnWhatTheCompanionTellsAndAnswersWithWhatCameOfIt) {
    const auto shell = makeShell();
    QObject::connect(&companion, &CompanionBus::told, &companion, [this] {
        // Something follows at once, and something on a later turn.
        outbox.setFrame(CompanionWindowID{7}, {1, 2, 3, 4});
        loop.post([this] { outbox.showOverlay({}); });
    });
    shell->call("DragBegin", dragText(1, "[1,2]", 0));
    ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    EXPECT_EQ(drags(), 1U);
    EXPECT_TRUE(shell->frames.contains(7));
    EXPECT_TRUE(shell->overlay) << "what the event brings about by the turn's end is in the answer";
    EXPECT_TRUE(outbox.isEmpty());
}

TEST_F(CompanionBusTest, AnswersEachOfSeveralCallsWithTheFramesThatItBroughtAbout) {
    const auto shell = makeShell();
    QObject::connect(&companion, &CompanionBus::told, &companion,
                     [this](const CompanionMessage& message) {
                         if (std::holds_alternative<CompanionDrag>(message))
                             outbox.setFrame(CompanionWindowID{7}, {1, 2, 3, 4});
                     });
    // As after a time in which this process was stopped: all of it is there at once.
    shell->call("DragBegin", dragText(1, "[1,2]", 0));
    shell->call("Focus", R"({"focus":null})");
    PrivateBus::takeAllIn(shell->connection());
    PrivateBus::takeAllIn(own.connection());
    ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    EXPECT_EQ(shell->answers,
              QStringList({QStringLiteral(R"({"do":[{"c":"frame","frame":[1,2,3,4],"window":7}]})"),
                           QStringLiteral("{}")}));
    EXPECT_TRUE(outbox.isEmpty());
}

TEST_F(CompanionBusTest, HasTheLaterOfTwoFramesOfAWindowCount) {
    const auto shell = makeShell();
    outbox.setFrame(CompanionWindowID{7}, {1, 1, 1, 1});
    outbox.setFrame(CompanionWindowID{8}, {1, 2, 3, 4});
    QObject::connect(&companion, &CompanionBus::told, &companion, [this] {
        outbox.setFrame(CompanionWindowID{7}, {2, 2, 2, 2});
        loop.post([this] { outbox.setFrame(CompanionWindowID{8}, {5, 6, 7, 8}); });
    });
    shell->call("DragBegin", dragText(1, "[1,2]", 0));
    ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    EXPECT_EQ(shell->answers,
              QStringList(QStringLiteral(R"({"do":[{"c":"frame","frame":[2,2,2,2],"window":7},)"
                                         R"({"c":"frame","frame":[5,6,7,8],"window":8}]})")));
}

TEST_F(CompanionBusTest, AnswersTheOneWhoWaitsWhenThereIsSomethingToDoAndNotBefore) {
    const auto shell = makeShell();
    shell->greet();
    ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    const auto answersBefore = shell->answers.size();
    shell->call("Focus", R"({"focus":null})");
    ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    EXPECT_EQ(shell->answers.size(), answersBefore + 1) << "the waiting call is not answered";
    for (int id = 1; id <= 3; ++id) {
        outbox.setFrame(CompanionWindowID{static_cast<quint64>(id)}, {1, 2, 3, 4});
        ASSERT_TRUE(waitUntil([&] { return shell->frames.contains(id); }));
    }
}

TEST_F(CompanionBusTest, LeavesWhatIsToLastToTheOneWhoWaitsWhoseAnswerIsNeverTooLate) {
    const auto shell = makeShell();
    shell->greet();
    ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    shell->answers.clear();
    QObject::connect(&companion, &CompanionBus::told, &companion, [this] {
        outbox.setFrame(CompanionWindowID{7}, {1, 2, 3, 4});
        outbox.showItem({QStringLiteral("icon"), QStringLiteral("name")});
    });
    shell->call("DragBegin", dragText(1, "[1,2]", 0));
    ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    ASSERT_EQ(shell->answers.size(), 2);
    EXPECT_TRUE(shell->answers[0].contains(QStringLiteral("item")));
    EXPECT_FALSE(shell->answers[0].contains(QStringLiteral("frame")));
    EXPECT_TRUE(shell->answers[1].contains(QStringLiteral("frame")));
    EXPECT_FALSE(shell->answers[1].contains(QStringLiteral("item")));
}

TEST_F(CompanionBusTest, LetsOneCallWaitAtATime) {
    const auto shell = makeShell();
    shell->call("NextCommand", "{}");
    shell->call("NextCommand", "{}");
    ASSERT_TRUE(waitUntil([&] { return shell->answered == 1; }));
    EXPECT_EQ(shell->answers, QStringList{QStringLiteral("{}")});
    outbox.hideOverlay();
    EXPECT_TRUE(waitUntil([&] { return shell->answered == 2; }));
}

TEST_F(CompanionBusTest, BelievesNobodyButTheCompositor) {
    const auto shell = makeShell();
    QDBusConnection stranger = bus.connect();
    QDBusMessage message =
        QDBusMessage::createMethodCall(CompanionBus::serviceName(), CompanionBus::objectPath(),
                                       CompanionBus::interfaceName(), QStringLiteral("Hello"));
    message << QString::fromUtf8(helloText());
    const QDBusPendingCallWatcher pending(stranger.asyncCall(message));
    ASSERT_TRUE(waitUntil([&] { return pending.isFinished(); }));
    EXPECT_EQ(pending.reply().errorName(),
              QStringLiteral("org.freedesktop.DBus.Error.AccessDenied"));
    EXPECT_TRUE(told.empty());
}

TEST_F(CompanionBusTest, RefusesWhatMakesNoSense) {
    const auto shell = makeShell();
    shell->call("Hello", "{}");
    shell->call("Hello", QByteArray(100'000, ' '));
    shell->call("Quit", "{}");
    ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    EXPECT_EQ(shell->errors,
              QStringList(3, QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs")));
    EXPECT_TRUE(told.empty());
}

TEST_F(CompanionBusTest, SaysWhichProtocolItSpeaksToWhoSpeaksAnother) {
    const auto shell = makeShell();
    outbox.hideOverlay();
    shell->call("Hello", R"({"protocol":2})");
    ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    EXPECT_EQ(shell->answers, QStringList{QStringLiteral("{\"protocol\":1}")});
}

TEST_F(CompanionBusTest, ForgetsWhatWasToBeDoneAtAGreetingAndWithTheCompositorsEnd) {
    auto shell = makeShell();
    outbox.setFrame(CompanionWindowID{7}, {1, 2, 3, 4});
    shell->call("Hello", helloText());
    ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    EXPECT_TRUE(shell->frames.empty());
    QSignalSpy lost(&companion, &CompanionBus::lost);
    outbox.setFrame(CompanionWindowID{8}, {1, 2, 3, 4});
    shell.reset();
    EXPECT_TRUE(waitUntil([&] { return lost.size() == 1; }));
    EXPECT_TRUE(outbox.isEmpty());
    const auto next = makeShell();
    next->greet();
    EXPECT_TRUE(waitUntil([&] { return next->isAnswered(); }));
    EXPECT_TRUE(next->frames.empty());
}

TEST_F(CompanionBusTest, GetsItsNameOnceAnotherProcessHasGivenItUp) {
    QDBusConnection former = bus.connect();
    ASSERT_TRUE(former.registerService(CompanionBus::serviceName()));
    MockCompanion shell(bus.connect());
    ASSERT_TRUE(waitUntil([&] { return !companion.compositor().isEmpty(); }));
    former.unregisterService(CompanionBus::serviceName());
    ASSERT_TRUE(waitUntil([&] { return shell.seesProgram(); }));
    shell.greet();
    EXPECT_TRUE(waitUntil([&] { return told.size() == 1; }));
}

TEST_F(CompanionBusTest, DoesNotListenToACompanionWhoCallsAllTheTimeUntilItHasCalmedDown) {
    const auto shell = makeShell();
    QSignalSpy overrun(&companion, &CompanionBus::overrun);
    const auto callTimes = [&](int count) {
        for (int i = 0; i < count; ++i)
            shell->call("DragMotion", dragText(1, "[1,2]", 0));
        ASSERT_TRUE(waitUntil([&] { return shell->isAnswered(); }));
    };
    // Time stands still meanwhile.
    callTimes(CompanionBus::mostMessagesASecond);
    EXPECT_EQ(drags(), std::size_t{CompanionBus::mostMessagesASecond});
    EXPECT_EQ(overrun.size(), 0);
    callTimes(3);
    EXPECT_EQ(drags(), std::size_t{CompanionBus::mostMessagesASecond});
    EXPECT_EQ(overrun.size(), 3);
    EXPECT_EQ(shell->errors,
              QStringList(3, QStringLiteral("org.freedesktop.DBus.Error.LimitsExceeded")));
    loop.time += std::chrono::milliseconds(1);
    callTimes(CompanionBus::mostMessagesASecond / 1000);
    EXPECT_EQ(overrun.size(), 3) << "it has calmed down for as long as that takes";
}

} // namespace tilewright::testing
