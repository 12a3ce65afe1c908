#pragma once

#include <QByteArray>

namespace tilewright {

/// The companion's text, which does nothing until a line at its end makes one of its objects.
[[nodiscard]] QByteArray kwinCompanionScript();

} // namespace tilewright
