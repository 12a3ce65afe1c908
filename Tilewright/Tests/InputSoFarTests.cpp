#include <FakePlatform.h>
#include <Tilewright/InputSoFar.h>

#include <QObject>
#include <gtest/gtest.h>
#include <memory>

namespace tilewright::testing {

TEST(InputSoFar, IsWaitedForFromTheEventLoopAndOnce) {
    FakeDesktop desktop;
    QObject context;
    int calls = 0;
    afterInputSoFar(&context, [&] { ++calls; });
    EXPECT_EQ(calls, 0);
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_EQ(calls, 1);
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_EQ(calls, 1);
}

TEST(InputSoFar, IsNotWaitedForByWhatIsGone) {
    FakeDesktop desktop;
    auto context = std::make_unique<QObject>();
    int calls = 0;
    afterInputSoFar(context.get(), [&] { ++calls; });
    desktop.platform.fakeMainLoop.post([&] { context.reset(); });
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_EQ(calls, 0);
}

} // namespace tilewright::testing
