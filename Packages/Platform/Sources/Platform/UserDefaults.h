#pragma once

#include <QString>
#include <optional>

namespace tilewright {

/// The application's own persistent settings. Main thread only.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// The string stored under the key; none when there is none or the value is no string.
    [[nodiscard]] virtual std::optional<QString> string(const QString& key) const = 0;
    /// Stores a string under the key; the desktop decides when it reaches the disk.
    virtual void setString(const QString& value, const QString& key) = 0;
};

} // namespace tilewright
