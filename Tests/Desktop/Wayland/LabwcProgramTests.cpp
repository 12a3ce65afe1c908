#include "LabwcSession.h"
#include "OtherCompositor.h"

namespace tilewright::testing {

INSTANTIATE_TEST_SUITE_P(Labwc, OtherCompositor, ::testing::ValuesIn([] {
                             const auto start = [](LayerSession::Beside beside) {
                                 return std::make_unique<LabwcSession>(beside);
                             };
                             constexpr QSize display(1280, 720);
                             return std::vector<OtherSession>{
                                 {"Alone", start, LayerSession::Beside::nothing, display},
                                 {"WithAnXServer", start, LayerSession::Beside::xServer, display}};
                         }()),
                         [](const auto& session) { return std::string(session.param.name); });

} // namespace tilewright::testing
