#include "MixedSoak.h"

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

TEST(LongSoak, TenThousandDragsOpeningsEditsAndSessionsLeaveNothingBehind) {
    expectNothingPilesUpInUse({.batches = 40, .roundsPerBatch = 20, .bytesPerEvent = 16});
}

} // namespace
} // namespace tilewright::testing
