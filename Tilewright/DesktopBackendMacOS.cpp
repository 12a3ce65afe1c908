#include "DesktopBackend.h"

#include <MacOS/MacPlatform.h>

#include <QtGlobal>

namespace tilewright {

namespace {

class MacBackend final : public DesktopBackend {
public:
    MacBackend() {
        // Qt makes every program the active one as it starts, one without a Dock icon too, and
        // takes the keyboard from whoever works meanwhile. It asks for this at its own start and
        // again once it has launched.
        qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
    }
    [[nodiscard]] std::vector<std::string> qtArguments() const override { return {}; }
    [[nodiscard]] std::shared_ptr<void> precaution() const override { return nullptr; }
    [[nodiscard]] std::unique_ptr<Platform> open() const override {
        return std::make_unique<MacPlatform>();
    }
    [[nodiscard]] std::shared_ptr<void> beginLife() const override { return nullptr; }
};

} // namespace

std::unique_ptr<DesktopBackend> DesktopBackend::find(std::span<char*> /*arguments*/) {
    return std::make_unique<MacBackend>();
}

} // namespace tilewright
