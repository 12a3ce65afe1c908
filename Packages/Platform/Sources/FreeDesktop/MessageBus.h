#pragma once

#include <QDBusMessage>

namespace tilewright {

/// A call of one of the bus's own methods.
[[nodiscard]] QDBusMessage callToBus(const QString& method);

} // namespace tilewright
