#include "OtherCompositor.h"
#include "SwaySession.h"

namespace tilewright::testing {

INSTANTIATE_TEST_SUITE_P(
    Sway, OtherCompositor,
    sessionsOf([](LayerSession::Beside beside) { return std::make_unique<SwaySession>(1, beside); },
               QSize(1920, 1080)),
    OtherSession::nameOf);

} // namespace tilewright::testing
