#pragma once

#include "CompanionState.h"

#include <FreeDesktop/FreeDesktopAppearance.h>
#include <Platform/Appearance.h>

namespace tilewright {

/// The wishes that the desktop portal tells, and for less motion what the companion tells where the
/// portal says nothing: older portals do not, and some sessions have none. Main thread only.
class CompanionAppearance final : public Appearance {
    Q_OBJECT

public:
    /// Both have to outlive this.
    CompanionAppearance(MessageBus& bus, const CompanionState& state);
    ~CompanionAppearance() override;

    [[nodiscard]] bool blendsWindows() const override { return true; }
    [[nodiscard]] std::optional<bool> prefersReducedMotion() const override { return reduced_; }
    [[nodiscard]] bool prefersDark() const override { return portal_.prefersDark(); }

private:
    void weighMotion();

    const CompanionState& state_;
    FreeDesktopAppearance portal_;
    std::optional<bool> reduced_;
};

} // namespace tilewright
