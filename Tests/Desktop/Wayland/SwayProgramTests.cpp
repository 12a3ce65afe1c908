#include "OtherCompositor.h"
#include "SwaySession.h"

namespace tilewright::testing {

INSTANTIATE_TEST_SUITE_P(Sway, OtherCompositor, ::testing::ValuesIn([] {
                             const auto start = [](LayerSession::Beside beside) {
                                 return std::make_unique<SwaySession>(1, beside);
                             };
                             constexpr QSize display(1920, 1080);
                             return std::vector<OtherSession>{
                                 {"Alone", start, LayerSession::Beside::nothing, display},
                                 {"WithAnXServer", start, LayerSession::Beside::xServer, display}};
                         }()),
                         [](const auto& session) { return std::string(session.param.name); });

} // namespace tilewright::testing
