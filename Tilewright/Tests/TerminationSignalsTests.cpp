#include <Tilewright/TerminationSignals.h>
#include <Waiting.h>

#include <QCoreApplication>
#include <QSignalSpy>
#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>

using tilewright::TerminationSignals;
using tilewright::testing::waitUntil;

namespace {

using Handler = void (*)(int);

extern "C" void formerHandler(int /*signal*/) {}

Handler handlerOf(int signal) {
    struct sigaction now = {};
    return sigaction(signal, nullptr, &now) == 0 ? now.sa_handler : nullptr;
}

/// Begins without whatever the tests were started to ignore, as by nohup.
class TerminationSignalsTest : public ::testing::Test {
protected:
    TerminationSignalsTest() {
        for (const int number : {SIGTERM, SIGINT, SIGHUP})
            std::signal(number, SIG_DFL);
    }
};

} // namespace

TEST_F(TerminationSignalsTest, TurnsEachSignalIntoACallFromTheEventLoop) {
    const TerminationSignals termination;
    QSignalSpy requested(&termination, &TerminationSignals::terminationRequested);
    EXPECT_FALSE(TerminationSignals::hasCome());
    int expected = 0;
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        ASSERT_EQ(std::raise(number), 0);
        EXPECT_EQ(requested.size(), expected) << "within the signal's handler";
        EXPECT_TRUE(TerminationSignals::hasCome());
        ++expected;
        EXPECT_TRUE(waitUntil([&] { return requested.size() == expected; }));
    }
}

TEST_F(TerminationSignalsTest, LeaveTheErrorOfTheCallThatTheyInterruptAsItWas) {
    const TerminationSignals termination;
    // Before so many are raised, nothing more can be written down for the event loop.
    for (int i = 0; i < 100'000; ++i) {
        errno = EDOM;
        const int result = std::raise(SIGHUP);
        ASSERT_EQ(errno, EDOM) << "after " << i << " signals";
        ASSERT_EQ(result, 0);
    }
}

TEST_F(TerminationSignalsTest, PutsTheFormerHandlersBack) {
    std::signal(SIGHUP, formerHandler);
    {
        const TerminationSignals termination;
        EXPECT_NE(handlerOf(SIGHUP), formerHandler);
    }
    EXPECT_EQ(handlerOf(SIGHUP), formerHandler);
    std::signal(SIGHUP, SIG_DFL);
}

TEST_F(TerminationSignalsTest, LeavesASignalIgnoredThatTheProcessWasStartedToIgnore) {
    std::signal(SIGHUP, SIG_IGN);
    {
        const TerminationSignals termination;
        EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
        EXPECT_NE(handlerOf(SIGTERM), SIG_DFL) << "the others are heeded";
        QSignalSpy requested(&termination, &TerminationSignals::terminationRequested);
        ASSERT_EQ(std::raise(SIGHUP), 0);
        QCoreApplication::processEvents();
        EXPECT_EQ(requested.size(), 0);
        EXPECT_FALSE(TerminationSignals::hasCome());
    }
    EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
    std::signal(SIGHUP, SIG_DFL);
}
