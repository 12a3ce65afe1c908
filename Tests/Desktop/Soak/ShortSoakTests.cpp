#include "MixedSoak.h"

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

TEST(Soak, ThreeThousandDragsOpeningsEditsAndSessionsLeaveNothingBehind) {
    expectNothingPilesUpInUse({.batches = 8, .roundsPerBatch = 30, .bytesPerEvent = 128});
}

} // namespace
} // namespace tilewright::testing
