#pragma once

#include "ZoneLayout.h"

#include <QByteArray>
#include <map>

namespace tilewright {

/// The JSON form of layouts and of the file they are kept in.
///
/// Compact UTF-8. Writing fails on a number that JSON has no form for (infinities, not-a-number);
/// whatever else is written is read as the very same value. Reading is strict: every key is
/// required, a value of the wrong type anywhere fails the whole, no value is converted; unknown
/// keys are ignored, and of two equal keys the last one counts. What the numbers mean is not
/// checked.
class LayoutCoding {
public:
    LayoutCoding() = delete;

    /// The record that the layouts file holds.
    struct Persisted {
        std::vector<ZoneLayout> customLayouts;
        /// Layout ids by display key.
        std::map<QString, QUuid> assignments;

        friend bool operator==(const Persisted&, const Persisted&) = default;
    };

    /// The whole file.
    [[nodiscard]] static std::optional<QByteArray> encode(const Persisted& persisted);
    [[nodiscard]] static std::optional<QByteArray> encode(const ZoneLayout& layout);
    [[nodiscard]] static std::optional<QByteArray> encode(const Zone& zone);
    [[nodiscard]] static std::optional<QByteArray> encode(const ZoneRect& rect);

    /// Reads a whole file; none when any of it is wrong.
    [[nodiscard]] static std::optional<Persisted> decodePersisted(QByteArrayView bytes);
    [[nodiscard]] static std::optional<ZoneLayout> decodeZoneLayout(QByteArrayView bytes);
    [[nodiscard]] static std::optional<Zone> decodeZone(QByteArrayView bytes);
    [[nodiscard]] static std::optional<ZoneRect> decodeZoneRect(QByteArrayView bytes);
};

} // namespace tilewright
