#include "Endurance.h"

#include "DragScript.h"
#include "ProcessFigures.h"

#include <Waiting.h>
#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <vector>

namespace tilewright::testing {
namespace {

long lowerQuartileOf(std::vector<long> values) {
    const auto quarter = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 4);
    std::nth_element(values.begin(), quarter, values.end());
    return *quarter;
}

} // namespace

void expectNothingPilesUp(int drags) {
    DesktopSession desktop;
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    RunningProgram program(desktop);
    DragScript script(desktop, program);
    const XInspector& inspector = desktop.inspector();
    const TestClient client = startClient(desktop, ClientKind::qt, {300, 200, 640, 420});
    const auto& zones = ZoneLayout::bentoBox().zones;
    std::size_t next = 0;
    const auto drag = [&](int times) {
        for (int i = 0; i < times && !::testing::Test::HasFailure(); ++i) {
            const QRect frame = zoneFrame(zones[next++ % zones.size()], workArea(inspector));
            script.run(client, KeyTiming::beforeThePress, frame.center());
            expectFills(inspector, ClientKind::qt, client, frame);
        }
        return !::testing::Test::HasFailure();
    };
    const auto holdings = [&] {
        return Holdings{processFigures(program.pid()).fileDescriptors,
                        xResources(desktop.display(), program.pid()),
                        inspector.allWindows().size()};
    };

    // What is made on first use, and the allocator's caches, settle first.
    ASSERT_TRUE(drag(30));
    // A drop is looked after for a moment more: what that takes is not what the program keeps.
    ASSERT_TRUE(waitUntil([&] {
        const long wakeUps = processFigures(program.pid()).voluntarySwitches;
        return staysTrue([&] { return processFigures(program.pid()).voluntarySwitches == wakeUps; },
                         std::chrono::milliseconds(400));
    })) << "something goes on waking the program";
    const Holdings before = holdings();
    EXPECT_FALSE(before.resources.empty());

    constexpr int batch = 10;
    std::vector<long> growth;
    long held = processFigures(program.pid()).anonymousKiB;
    for (int done = 0; done < drags; done += batch) {
        ASSERT_TRUE(drag(batch)) << "after " << done << " drags";
        const long now = processFigures(program.pid()).anonymousKiB;
        growth.push_back(now - held);
        held = now;
    }
    // An allocator takes steps and keeps them, the more the busier the machine is, and comes to an
    // end with that after some thousand drags; a leak grows in every batch. This many pages of a
    // batch are two kilobytes a drag.
    constexpr long fewPages = 20; // KiB
    EXPECT_LE(lowerQuartileOf(growth), fewPages) << ::testing::PrintToString(growth);
    std::printf("growth over batches of %d drags, KiB: %s\n", batch,
                ::testing::PrintToString(growth).c_str());
    EXPECT_TRUE(waitUntil([&] { return holdings().isWithin(before); }))
        << ::testing::PrintToString(before) << "\n is now " << ::testing::PrintToString(holdings());
}

} // namespace tilewright::testing
