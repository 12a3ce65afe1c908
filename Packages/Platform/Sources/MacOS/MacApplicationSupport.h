#pragma once

#include <Platform/ApplicationSupport.h>

namespace tilewright {

/// The user's Application Support folder.
class MacApplicationSupport final : public ApplicationSupport {
public:
    [[nodiscard]] std::optional<QString> folder() const override;
};

} // namespace tilewright
