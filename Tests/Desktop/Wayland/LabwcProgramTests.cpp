#include "LabwcSession.h"
#include "OtherCompositor.h"

namespace tilewright::testing {

INSTANTIATE_TEST_SUITE_P(
    Labwc, OtherCompositor,
    sessionsOf([](LayerSession::Beside beside) { return std::make_unique<LabwcSession>(beside); },
               QSize(1280, 720)),
    OtherSession::nameOf);

} // namespace tilewright::testing
