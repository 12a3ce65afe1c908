#pragma once

#include <Platform/Appearance.h>

#include <memory>

namespace tilewright {

namespace appkit {
class Observation;
}

/// How the user has the system display things. Qt follows dark colours by itself here, and windows
/// always blend. Main thread only.
class MacAppearance final : public Appearance {
    Q_OBJECT

public:
    MacAppearance();
    ~MacAppearance() override;

    [[nodiscard]] bool blendsWindows() const override { return true; }
    [[nodiscard]] std::optional<bool> prefersReducedMotion() const override;
    [[nodiscard]] bool prefersDark() const override { return false; }

private:
    std::unique_ptr<appkit::Observation> displayOptions_;
};

} // namespace tilewright
