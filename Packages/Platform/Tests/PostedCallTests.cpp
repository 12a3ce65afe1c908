#include <FakeMainLoop.h>
#include <Platform/PostedCall.h>

#include <gtest/gtest.h>
#include <memory>

namespace tilewright {
namespace {

using testing::FakeMainLoop;

struct PostedCallTest : ::testing::Test {
    FakeMainLoop loop;
    int calls = 0;
    std::unique_ptr<PostedCall> call = std::make_unique<PostedCall>(loop, [this] { ++calls; });
};

TEST_F(PostedCallTest, DoesNothingUnasked) {
    loop.runPosted();
    EXPECT_EQ(calls, 0);
}

TEST_F(PostedCallTest, ComesOnALaterTurnAndNotAtOnce) {
    call->post();
    EXPECT_EQ(calls, 0);
    loop.runPosted();
    EXPECT_EQ(calls, 1);
}

TEST_F(PostedCallTest, ComesOnceForAllRequestsThatWaitTogether) {
    call->post();
    call->post();
    call->post();
    loop.runPosted();
    EXPECT_EQ(calls, 1);
}

TEST_F(PostedCallTest, ComesAgainForARequestMadeAfterIt) {
    call->post();
    loop.runPosted();
    call->post();
    loop.runPosted();
    EXPECT_EQ(calls, 2);
}

TEST_F(PostedCallTest, MayBeAskedForByItsOwnAction) {
    int rounds = 0;
    std::unique_ptr<PostedCall> again;
    again = std::make_unique<PostedCall>(loop, [&] {
        if (++rounds < 3)
            again->post();
    });
    again->post();
    // However many of them a run of the fake loop takes.
    for (int turn = 0; turn < 3; ++turn)
        loop.runPosted();
    EXPECT_EQ(rounds, 3);
}

TEST_F(PostedCallTest, DoesNotComeOnceItHasEnded) {
    call->post();
    call.reset();
    loop.runPosted();
    EXPECT_EQ(calls, 0);
}

} // namespace
} // namespace tilewright
