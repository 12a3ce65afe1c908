#pragma once

#include <Platform/Screens.h>

#include <memory>

namespace tilewright {

/// The displays as AppKit lists them, which is the primary one first. Main thread only.
class MacScreens final : public Screens {
    Q_OBJECT

public:
    MacScreens();
    ~MacScreens() override;

    /// Asked of AppKit at each call, so that a change is seen also before it is announced.
    [[nodiscard]] const std::vector<ScreenPtr>& all() const override;
    [[nodiscard]] ScreenPtr main() const override;

private:
    class Observation;

    void refresh() const;

    mutable std::vector<ScreenPtr> screens_;
    std::unique_ptr<Observation> observation_;
};

} // namespace tilewright
