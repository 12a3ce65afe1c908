#include "SampleLayout.h"

namespace tilewright {

QUuid sampleLayoutID() {
    return QUuid::fromString(QStringLiteral("6B1C0F4E-58C5-4C0D-8F3B-0D6A7E1D2C11"));
}

ZoneLayout sampleLayout(int number) {
    ZoneLayout layout{
        sampleLayoutID(), QString::number(number), QStringLiteral("square"), false, {}};
    const int zoneCount = number * 37 % 200;
    for (int i = 0; i < zoneCount; ++i) {
        const QString name = QStringLiteral("Zone %1 of %2").arg(i).arg(number);
        layout.zones.push_back({QUuid::createUuidV5(sampleLayoutID(), name), name,
                                i / 7.0 / zoneCount, number / 13.0, 1.0 / zoneCount, 0.5});
    }
    return layout;
}

} // namespace tilewright
