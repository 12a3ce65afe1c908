#pragma once

#include <Platform/EventMonitors.h>

#include <QString>
#include <array>
#include <optional>

namespace tilewright {

/// The key that turns a window drag into a snap.
enum class SnapModifier { control, shift, option, command };

/// What `SnapModifier` is a choice of.
struct SnapModifiers {
    SnapModifiers() = delete;

    /// The four keys in the order in which they are offered.
    static constexpr std::array allCases{SnapModifier::control, SnapModifier::shift,
                                         SnapModifier::option, SnapModifier::command};
};

/// The text under which the choice is stored, such as "control".
[[nodiscard]] QString rawValue(SnapModifier modifier);
/// The modifier with exactly this raw value.
[[nodiscard]] std::optional<SnapModifier> snapModifierFromRawValue(const QString& rawValue);
/// The key's symbol, a single character, such as "⌃".
[[nodiscard]] QString symbol(SnapModifier modifier);
/// What the picker shows, such as "⌃ Control".
[[nodiscard]] QString pickerLabel(SnapModifier modifier);
/// The key's bit in an event's modifier flags.
[[nodiscard]] ModifierFlag eventFlag(SnapModifier modifier);

} // namespace tilewright
