#include <FakeMainLoop.h>
#include <X11/X11InputBarrier.h>

#include <gtest/gtest.h>
#include <memory>

namespace tilewright::testing {
namespace {

/// Counts the answers of the server.
class CountedPointer final : public Pointer {
public:
    AppKitPoint location() const override {
        ++answers;
        return {};
    }
    mutable int answers = 0;
};

struct X11InputBarrierTest : public ::testing::Test {
    CountedPointer pointer;
    FakeMainLoop loop;
    std::unique_ptr<X11InputBarrier> barrier = std::make_unique<X11InputBarrier>(pointer, loop);
    int calls = 0;
};

} // namespace

TEST_F(X11InputBarrierTest, IsPassedFromTheEventLoopAndOnce) {
    barrier->whenPassed([&] { ++calls; });
    EXPECT_EQ(calls, 0);
    loop.runPosted();
    EXPECT_EQ(calls, 1);
    loop.runPosted();
    EXPECT_EQ(calls, 1);
}

TEST_F(X11InputBarrierTest, LetsTheMonitorsAskTheServerThemselvesBeforeItsSecondAnswer) {
    barrier->whenPassed([&] { EXPECT_EQ(pointer.answers, 2); });
    EXPECT_EQ(pointer.answers, 1);
    loop.post([&] { EXPECT_EQ(pointer.answers, 2); });
    loop.runPosted();
}

TEST_F(X11InputBarrierTest, IsNotPassedOnceItIsGone) {
    barrier->whenPassed([&] { ++calls; });
    loop.post([&] { barrier.reset(); });
    loop.runPosted();
    EXPECT_EQ(calls, 0);
}

} // namespace tilewright::testing
