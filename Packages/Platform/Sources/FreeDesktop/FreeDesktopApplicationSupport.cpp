#include "FreeDesktopApplicationSupport.h"

#include <QStandardPaths>

namespace tilewright {

std::optional<QString> FreeDesktopApplicationSupport::folder() const {
    const QString path = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return path.isEmpty() ? std::nullopt : std::optional(path);
}

} // namespace tilewright
