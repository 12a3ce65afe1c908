#include "DisplayIdentity.h"

#include <QHashFunctions>

namespace tilewright {

std::size_t qHash(const DisplayIdentity& identity, std::size_t seed) noexcept {
    return qHashMulti(seed, identity.key, identity.localizedName);
}

std::optional<DisplayIdentity> displayIdentity(const Screen& screen) {
    const std::optional<quint32> displayID = screen.displayID();
    if (!displayID)
        return std::nullopt;
    const QString key =
        screen.persistentUUID().value_or(QStringLiteral("display-") + QString::number(*displayID));
    return DisplayIdentity{key, screen.localizedName()};
}

} // namespace tilewright
