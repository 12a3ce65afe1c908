#include <Tilewright/TerminationSignals.h>
#include <Waiting.h>

#include <QSignalSpy>
#include <csignal>
#include <gtest/gtest.h>

using tilewright::TerminationSignals;
using tilewright::testing::waitUntil;

TEST(TerminationSignals, TurnsEachSignalIntoACallFromTheEventLoop) {
    const TerminationSignals termination;
    QSignalSpy requested(&termination, &TerminationSignals::terminationRequested);
    int expected = 0;
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        ASSERT_EQ(std::raise(number), 0);
        EXPECT_EQ(requested.size(), expected) << "within the signal's handler";
        ++expected;
        EXPECT_TRUE(waitUntil([&] { return requested.size() == expected; }));
    }
}

TEST(TerminationSignals, PutsTheFormerHandlersBack) {
    std::signal(SIGHUP, SIG_IGN);
    { const TerminationSignals termination; }
    struct sigaction now = {};
    ASSERT_EQ(sigaction(SIGHUP, nullptr, &now), 0);
    EXPECT_EQ(now.sa_handler, SIG_IGN);
    std::signal(SIGHUP, SIG_DFL);
}
