#pragma once

#include <Platform/KeyNames.h>

namespace tilewright {

/// A Mac's keys bear the words that the views have.
class MacKeyNames final : public KeyNames {
public:
    [[nodiscard]] std::optional<QString> localName(ModifierFlag /*key*/) const override {
        return std::nullopt;
    }
};

} // namespace tilewright
