#include "OtherCompositor.h"
#include "WayfireSession.h"

namespace tilewright::testing {

INSTANTIATE_TEST_SUITE_P(
    Wayfire, OtherCompositor,
    sessionsOf([](LayerSession::Beside beside) { return std::make_unique<WayfireSession>(beside); },
               QSize(1280, 720)),
    OtherSession::nameOf);

} // namespace tilewright::testing
