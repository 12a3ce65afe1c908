#include "Endurance.h"

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

TEST(DragSoak, AThousandDragsLeaveNothingBehind) {
    expectNothingPilesUp(1000);
}

} // namespace
} // namespace tilewright::testing
