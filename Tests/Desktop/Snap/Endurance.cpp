#include "Endurance.h"

#include "DragScript.h"
#include "ProcessFigures.h"

#include <gtest/gtest.h>

namespace tilewright::testing {

void expectNothingPilesUp(int drags) {
    DesktopSession desktop;
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    RunningProgram program(desktop);
    DragScript script(desktop, program);
    const XInspector& inspector = desktop.inspector();
    const TestClient client = startClient(desktop, ClientKind::qt, {300, 200, 640, 420});
    const auto& zones = ZoneLayout::bentoBox().zones;
    std::size_t next = 0;
    const auto dragOnce = [&] {
        const QRect frame = zoneFrame(zones[next++ % zones.size()], workArea(inspector));
        script.run(client, KeyTiming::beforeThePress, frame.center());
        expectFills(inspector, ClientKind::qt, client, frame);
        return !::testing::Test::HasFailure();
    };
    // What is made on first use, and the allocator's caches, settle first.
    for (int i = 0; i < 30; ++i)
        ASSERT_TRUE(dragOnce());
    const ProcessFigures before = processFigures(program.pid());
    const XResources resourcesBefore = xResources(desktop.display(), program.pid());
    EXPECT_FALSE(resourcesBefore.empty());
    const std::size_t windowsBefore = inspector.allWindows().size();
    for (int i = 0; i < drags; ++i)
        ASSERT_TRUE(dragOnce()) << "drag " << i;
    const ProcessFigures after = processFigures(program.pid());
    EXPECT_EQ(after.fileDescriptors, before.fileDescriptors);
    // The allocator's own ups and downs; a leak of one event a drag would show in the long run.
    EXPECT_LE(after.privateKiB, before.privateKiB + 512);
    EXPECT_EQ(xResources(desktop.display(), program.pid()), resourcesBefore);
    EXPECT_EQ(inspector.allWindows().size(), windowsBefore);
}

} // namespace tilewright::testing
