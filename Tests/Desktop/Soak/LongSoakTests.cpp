#include "MixedSoak.h"

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

TEST(LongSoak, TenThousandDragsOpeningsEditsAndSessionsLeaveNothingBehind) {
    expectNothingPilesUpInUse({.batches = 40, .roundsPerBatch = 20, .bytesPerEvent = 16});
}

// For a program that a memory checker makes slow.
TEST(WatchedSoak, AHundredDragsOpeningsEditsAndSessionsLeaveNothingBehind) {
    expectNothingPilesUpInUse({.batches = 4, .roundsPerBatch = 2, .bytesPerEvent = 4096});
}

} // namespace
} // namespace tilewright::testing
