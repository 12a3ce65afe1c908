#pragma once

#include <Platform/KeyNames.h>

namespace tilewright {

/// The words on a PC's keyboard: Alt for option, and Super, as its desktops call the key whatever
/// is printed on it, for command.
class FreeDesktopKeyNames final : public KeyNames {
public:
    [[nodiscard]] std::optional<QString> localName(ModifierFlag key) const override;
};

} // namespace tilewright
