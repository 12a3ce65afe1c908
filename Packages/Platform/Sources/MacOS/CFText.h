#pragma once

#include "CFOwner.h"

#include <QString>
#include <optional>

namespace tilewright {

/// A Core Foundation string with the text; none (null) when it cannot be made.
[[nodiscard]] CFOwner<CFStringRef> makeCFString(const QString& text);
/// The text of an object if it is a string; none for null and for other types.
[[nodiscard]] std::optional<QString> textOf(CFTypeRef object);

} // namespace tilewright
