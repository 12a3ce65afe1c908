#pragma once

#include <Platform/Screens.h>

#include <QString>
#include <optional>

namespace tilewright {

/// The name under which a display's choice of layout is kept: the same in every run.
struct DisplayIdentity {
    /// The display's persistent UUID, or "display-" and its number where it has none.
    QString key;
    /// What the desktop calls the display.
    QString localizedName;

    friend bool operator==(const DisplayIdentity&, const DisplayIdentity&) = default;
};

/// Combines the hashes of the key and the name, in that order.
[[nodiscard]] std::size_t qHash(const DisplayIdentity& identity, std::size_t seed = 0) noexcept;

/// The display's identity, computed afresh; none for a display without a number.
[[nodiscard]] std::optional<DisplayIdentity> displayIdentity(const Screen& screen);

} // namespace tilewright
