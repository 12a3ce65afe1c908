#pragma once

#include <QString>
#include <QStringList>
#include <chrono>

namespace tilewright {

/// The first of these names that somebody owns on the session bus, as the bus says it; empty where
/// nobody owns any, and for a bus that is not there or does not answer within the bound. For the
/// start, before Qt's application object is made: blocks until it knows. The bound is for a login
/// on a busy machine: what is answered stands for the whole session.
[[nodiscard]] QString
firstOnSessionBus(const QStringList& names,
                  std::chrono::milliseconds bound = std::chrono::milliseconds(2000));

} // namespace tilewright
