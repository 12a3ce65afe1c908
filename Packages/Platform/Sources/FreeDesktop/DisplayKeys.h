#pragma once

#include "Edid.h"

#include <QString>
#include <map>
#include <optional>
#include <vector>

namespace tilewright {

/// Gives each connected display the UUID under which its layout is kept.
///
/// The UUID stands for the physical monitor, made from its EDID's identity; where that has no
/// serial, or a connected twin already has that UUID, for the monitor at its connector. A display
/// keeps its UUID for as long as it stays connected.
class DisplayKeys {
public:
    struct Display {
        QString connector;
        /// None where the monitor tells nothing.
        std::optional<Edid> edid;
    };

    /// Takes notice of what is connected now, in any order; answers the UUIDs in that order, in
    /// upper-case canonical form, none for a display without an EDID.
    [[nodiscard]] std::vector<std::optional<QString>> update(const std::vector<Display>& displays);

private:
    struct Held {
        QByteArray identity;
        QString uuid;
    };
    /// What is connected, by connector.
    std::map<QString, Held> held_;
};

/// The number of the display at a connector: the same in every run, never 0.
[[nodiscard]] quint32 displayNumber(const QString& connector);

/// What users call the display at a connector: its model, as far as it tells one.
[[nodiscard]] QString displayName(const QString& connector, const std::optional<Edid>& edid);

} // namespace tilewright
