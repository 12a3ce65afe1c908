#pragma once

#include "FreeDesktopAppearance.h"

#include <Platform/Appearance.h>

namespace tilewright {

/// The wishes that the desktop portal tells, on a Wayland compositor: those always blend windows.
/// Main thread only.
class PortalAppearance final : public Appearance {
    Q_OBJECT

public:
    /// The bus has to outlive this.
    explicit PortalAppearance(MessageBus& bus);
    ~PortalAppearance() override;

    [[nodiscard]] bool blendsWindows() const override { return true; }
    [[nodiscard]] std::optional<bool> prefersReducedMotion() const override {
        return session_.prefersReducedMotion();
    }
    [[nodiscard]] bool prefersDark() const override { return session_.prefersDark(); }

private:
    FreeDesktopAppearance session_;
};

} // namespace tilewright
