#include <FakeMainLoop.h>
#include <Platform/WholeFrames.h>

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace tilewright {
namespace {

using ::testing::ElementsAre;
using testing::FakeMainLoop;
using ::testing::IsEmpty;

using Finished = std::pair<std::string, WrittenFrame>;

struct WholeFramesTest : ::testing::Test {
    FakeMainLoop loop;
    std::vector<std::string> begun;
    std::vector<Finished> finished;
    std::map<std::string, AXError> errors;
    std::unique_ptr<WholeFrames<std::string>> frames = std::make_unique<WholeFrames<std::string>>(
        loop,
        [this](const std::string& window) {
            begun.push_back(window);
            const auto error = errors.find(window);
            return error == errors.end() ? AXError::success : error->second;
        },
        [this](const std::string& window, const WrittenFrame& frame) {
            finished.emplace_back(window, frame);
        });
};

TEST_F(WholeFramesTest, SizePositionSizeOfOneTurnAreOneFrameAtOnce) {
    EXPECT_EQ(frames->setSize("a", {100, 50}), AXError::success);
    EXPECT_EQ(frames->setPosition("a", {1, 2}), AXError::success);
    EXPECT_THAT(finished, IsEmpty());
    EXPECT_TRUE(frames->isAnyUnfinished());
    EXPECT_EQ(frames->setSize("a", {110, 60}), AXError::success);
    EXPECT_FALSE(frames->isAnyUnfinished());
    const Finished whole("a", {AXPoint{1, 2}, AXSize{110, 60}});
    EXPECT_THAT(finished, ElementsAre(whole));
    loop.runPosted();
    EXPECT_THAT(finished, ElementsAre(whole));
    EXPECT_THAT(begun, ElementsAre("a"));
}

TEST_F(WholeFramesTest, WhatIsWrittenAloneIsAFrameAtTheTurnsEnd) {
    frames->setPosition("a", {1, 2});
    frames->setPosition("a", {3, 4});
    frames->setSize("b", {5, 6});
    EXPECT_THAT(finished, IsEmpty());
    loop.runPosted();
    EXPECT_THAT(finished,
                ElementsAre(Finished("a", {AXPoint{3, 4}, {}}), Finished("b", {{}, AXSize{5, 6}})));
    EXPECT_FALSE(frames->isAnyUnfinished());
}

TEST_F(WholeFramesTest, TheWritesOfTwoWindowsDoNotMixHoweverTheyAlternate) {
    frames->setSize("a", {10, 10});
    frames->setSize("b", {20, 20});
    frames->setPosition("a", {1, 1});
    frames->setPosition("b", {2, 2});
    frames->setSize("a", {11, 11});
    EXPECT_TRUE(frames->isAnyUnfinished());
    frames->setSize("b", {22, 22});
    EXPECT_THAT(finished, ElementsAre(Finished("a", {AXPoint{1, 1}, AXSize{11, 11}}),
                                      Finished("b", {AXPoint{2, 2}, AXSize{22, 22}})));
    EXPECT_THAT(begun, ElementsAre("a", "b"));
}

TEST_F(WholeFramesTest, AnErrorOfOneWindowAnswersItsWritesAloneAndNothingOfItIsSet) {
    errors["a"] = AXError::invalidUIElement;
    EXPECT_EQ(frames->setSize("a", {10, 10}), AXError::invalidUIElement);
    EXPECT_EQ(frames->setSize("b", {20, 20}), AXError::success);
    EXPECT_EQ(frames->setPosition("a", {1, 1}), AXError::invalidUIElement);
    EXPECT_EQ(frames->setPosition("b", {2, 2}), AXError::success);
    // It is asked anew at each write: the window may have come back to its senses.
    errors.clear();
    EXPECT_EQ(frames->setSize("a", {11, 11}), AXError::success);
    EXPECT_EQ(frames->setSize("b", {22, 22}), AXError::success);
    loop.runPosted();
    EXPECT_THAT(finished, ElementsAre(Finished("b", {AXPoint{2, 2}, AXSize{22, 22}}),
                                      Finished("a", {{}, AXSize{11, 11}})));
    EXPECT_THAT(begun, ElementsAre("a", "b", "a", "a"));
}

TEST_F(WholeFramesTest, AWriteInALaterTurnIsAnotherFrame) {
    frames->setPosition("a", {1, 2});
    loop.runPosted();
    frames->setSize("a", {30, 40});
    loop.runPosted();
    EXPECT_THAT(finished, ElementsAre(Finished("a", {AXPoint{1, 2}, {}}),
                                      Finished("a", {{}, AXSize{30, 40}})));
    EXPECT_THAT(begun, ElementsAre("a", "a"));
}

TEST_F(WholeFramesTest, AWriteAfterACompleteFrameIsAnotherOneInTheSameTurnToo) {
    frames->setPosition("a", {1, 2});
    frames->setSize("a", {30, 40});
    frames->setSize("a", {50, 60});
    loop.runPosted();
    EXPECT_THAT(finished, ElementsAre(Finished("a", {AXPoint{1, 2}, AXSize{30, 40}}),
                                      Finished("a", {{}, AXSize{50, 60}})));
}

TEST_F(WholeFramesTest, NothingIsSetOnceItIsGone) {
    frames->setPosition("a", {1, 2});
    frames.reset();
    loop.runPosted();
    EXPECT_THAT(finished, IsEmpty());
}

} // namespace
} // namespace tilewright
