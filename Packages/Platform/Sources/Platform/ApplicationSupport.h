#pragma once

#include <QString>
#include <optional>

namespace tilewright {

/// Where the user's application data lives.
class ApplicationSupport {
public:
    virtual ~ApplicationSupport() = default;

    /// The absolute path of the first user-domain folder for application data; programs have
    /// folders of their own in it. It may not exist yet. None when the desktop reports none.
    [[nodiscard]] virtual std::optional<QString> folder() const = 0;
};

} // namespace tilewright
