#include "Endurance.h"

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

TEST(DragEndurance, AHundredDragsLeaveNothingBehind) {
    expectNothingPilesUp(100);
}

} // namespace
} // namespace tilewright::testing
