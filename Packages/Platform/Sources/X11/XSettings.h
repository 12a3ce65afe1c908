#pragma once

#include <QByteArray>
#include <cstdint>
#include <optional>

namespace tilewright {

/// The value of an integer setting in the property of an XSETTINGS manager; none where it has no
/// such setting, or one of another type. Whatever follows damaged bytes counts as not there.
[[nodiscard]] std::optional<std::int32_t> integerXSetting(const QByteArray& property,
                                                          const QByteArray& name);

} // namespace tilewright
