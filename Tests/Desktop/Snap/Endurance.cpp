#include "Endurance.h"

#include "DragScript.h"
#include "ProcessFigures.h"

#include <Waiting.h>
#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace tilewright::testing {
namespace {

long lowerQuartileOf(std::vector<long> values) {
    const auto quartile = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 4);
    std::nth_element(values.begin(), quartile, values.end());
    return *quartile;
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
    const Holdings before = holdings();
    EXPECT_FALSE(before.resources.empty());

    constexpr int batch = 10;
    constexpr long bound = batch; // KiB, one a drag
    std::vector<long> growth;
    long held = processFigures(program.pid()).privateKiB;
    for (int done = 0; done < drags; done += batch) {
        ASSERT_TRUE(drag(batch)) << "after " << done << " drags";
        const long now = processFigures(program.pid()).privateKiB;
        growth.push_back(now - held);
        held = now;
    }
    // An allocator takes a large step now and then and keeps it. A leak grows in every batch, and
    // one of less than a kilobyte a drag is the sanitizers' to find.
    EXPECT_LE(lowerQuartileOf(growth), bound) << ::testing::PrintToString(growth);
    EXPECT_TRUE(waitUntil([&] { return holdings().isWithin(before); }))
        << ::testing::PrintToString(before) << "\n is now " << ::testing::PrintToString(holdings());
}

} // namespace tilewright::testing
