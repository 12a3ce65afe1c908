#include "DesktopBackend.h"

#include <MacOS/MacPlatform.h>

namespace tilewright {

namespace {

class MacBackend final : public DesktopBackend {
public:
    [[nodiscard]] std::vector<std::string> qtArguments() const override { return {}; }
    [[nodiscard]] std::shared_ptr<void> precaution() const override { return nullptr; }
    [[nodiscard]] std::unique_ptr<Platform> open() const override {
        return std::make_unique<MacPlatform>();
    }
};

} // namespace

std::unique_ptr<DesktopBackend> DesktopBackend::find() {
    return std::make_unique<MacBackend>();
}

} // namespace tilewright
