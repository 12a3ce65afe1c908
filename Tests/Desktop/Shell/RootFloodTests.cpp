// The whole program while another client floods the X server's root window.

#include "ShellDesktop.h"

#include <ProcessFigures.h>
#include <Waiting.h>
#include <XClient.h>

#include <csignal>
#include <gtest/gtest.h>

namespace tilewright::testing {

TEST(RootFlood, LeavesNeitherABacklogNorMemoryBehind) {
    ShellDesktop desktop;
    Subprocess& program = desktop.startProgram();
    ASSERT_TRUE(waitUntil([&] {
        EXPECT_EQ(desktop.startAgain(), 0);
        return desktop.panel().has_value();
    }));
    const XClient anybody(desktop.session().display());
    const xcb_atom_t workArea = anybody.atom("_NET_WORKAREA");
    const auto flood = [&](quint32 times) {
        for (quint32 i = 0; i < times; ++i)
            anybody.setProperty(anybody.root(), workArea, XCB_ATOM_CARDINAL,
                                {0, 0, 1920, 1000 + i % 2});
        anybody.sync();
    };
    // What a first flood loads stays.
    flood(20'000);
    const long before = processFigures(program.pid()).anonymousKiB;
    constexpr quint32 many = 500'000;
    flood(many);
    constexpr long littleKiB = 4096;
    long after = 0;
    EXPECT_TRUE(waitUntil([&] {
        after = processFigures(program.pid()).anonymousKiB;
        return after < before + littleKiB;
    })) << before
        << " KiB before, " << after << " KiB afterwards";
    program.signal(SIGTERM);
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitCode(), 0);
}

} // namespace tilewright::testing
