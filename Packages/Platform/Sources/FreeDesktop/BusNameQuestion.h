#pragma once

#include <QString>
#include <chrono>

namespace tilewright {

/// Whether somebody owns a name on the session bus, as the bus says it within the bound; no for a
/// bus that is not there or does not answer. For the start, before Qt's application object is made:
/// blocks until it knows.
[[nodiscard]] bool isOnSessionBus(const QString& name,
                                  std::chrono::milliseconds bound = std::chrono::milliseconds(300));

} // namespace tilewright
