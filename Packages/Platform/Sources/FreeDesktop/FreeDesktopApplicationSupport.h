#pragma once

#include <Platform/ApplicationSupport.h>

namespace tilewright {

/// The generic data folder of the XDG base directories: $XDG_DATA_HOME, or ~/.local/share.
class FreeDesktopApplicationSupport final : public ApplicationSupport {
public:
    [[nodiscard]] std::optional<QString> folder() const override;
};

} // namespace tilewright
