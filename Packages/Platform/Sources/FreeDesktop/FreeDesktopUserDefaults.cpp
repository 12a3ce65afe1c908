#include "FreeDesktopUserDefaults.h"

namespace tilewright {

FreeDesktopUserDefaults::FreeDesktopUserDefaults()
    : settings_(QStringLiteral("Tilewright"), QStringLiteral("Tilewright")) {
    // The system's file of the same name is no setting of this user.
    settings_.setFallbacksEnabled(false);
}

std::optional<QString> FreeDesktopUserDefaults::string(const QString& key) const {
    const QVariant value = settings_.value(key);
    return value.metaType() == QMetaType::fromType<QString>() ? std::optional(value.toString())
                                                              : std::nullopt;
}

void FreeDesktopUserDefaults::setString(const QString& value, const QString& key) {
    settings_.setValue(key, value);
    // The process may end in whatever way before Qt comes to it.
    settings_.sync();
}

} // namespace tilewright
