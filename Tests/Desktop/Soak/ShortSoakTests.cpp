#include "MixedSoak.h"

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

TEST(Soak, AFewMinutesOfUseLeaveNothingBehind) {
    expectNothingPilesUpInUse({.batches = 5, .roundsPerBatch = 3, .bytesPerEvent = 1024});
}

} // namespace
} // namespace tilewright::testing
