#pragma once

#include <Platform/UserDefaults.h>

namespace tilewright {

/// The standard user defaults of this application.
class MacUserDefaults final : public UserDefaults {
public:
    [[nodiscard]] std::optional<QString> string(const QString& key) const override;
    void setString(const QString& value, const QString& key) override;
};

} // namespace tilewright
