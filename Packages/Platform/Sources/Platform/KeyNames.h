#pragma once

#include "EventMonitors.h"

#include <QString>
#include <optional>

namespace tilewright {

/// What the modifier keys are called where this program runs. Main thread only.
class KeyNames {
public:
    virtual ~KeyNames() = default;

    /// The word that a key bears on this desktop's keyboards, for users to read; none where it is
    /// the one that the key has in this program's own views.
    [[nodiscard]] virtual std::optional<QString> localName(ModifierFlag key) const = 0;
};

} // namespace tilewright
