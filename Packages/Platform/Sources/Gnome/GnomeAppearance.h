#pragma once

#include <FreeDesktop/FreeDesktopAppearance.h>
#include <Platform/Appearance.h>

namespace tilewright {

/// The wishes that the desktop portal tells; GNOME always blends windows. Main thread only.
class GnomeAppearance final : public Appearance {
    Q_OBJECT

public:
    /// The bus has to outlive this.
    explicit GnomeAppearance(MessageBus& bus);
    ~GnomeAppearance() override;

    [[nodiscard]] bool blendsWindows() const override { return true; }
    [[nodiscard]] std::optional<bool> prefersReducedMotion() const override {
        return session_.prefersReducedMotion();
    }
    [[nodiscard]] bool prefersDark() const override { return session_.prefersDark(); }

private:
    FreeDesktopAppearance session_;
};

} // namespace tilewright
