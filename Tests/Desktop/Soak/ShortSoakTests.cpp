#include "MixedSoak.h"

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

TEST(Soak, AThousandDragsOpeningsEditsAndSessionsLeaveNothingBehind) {
    expectNothingPilesUpInUse({.batches = 8, .roundsPerBatch = 10, .bytesPerEvent = 512});
}

} // namespace
} // namespace tilewright::testing
