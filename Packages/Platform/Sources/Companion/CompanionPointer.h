#pragma once

#include "CompanionScreens.h"

#include <Platform/Pointer.h>

namespace tilewright {

/// The pointer where the companion told it last; before that, where it was over a window of this
/// program last. Main thread only.
class CompanionPointer final : public Pointer {
public:
    /// Both have to outlive this.
    CompanionPointer(const CompanionState& state, const CompanionScreens& screens)
        : state_(state)
        , screens_(screens) {}

    [[nodiscard]] AppKitPoint location() const override;

private:
    const CompanionState& state_;
    const CompanionScreens& screens_;
};

} // namespace tilewright
