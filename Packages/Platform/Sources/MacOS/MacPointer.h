#pragma once

#include <Platform/Pointer.h>

namespace tilewright {

/// The pointer as AppKit tells it.
class MacPointer final : public Pointer {
public:
    [[nodiscard]] AppKitPoint location() const override;
};

} // namespace tilewright
