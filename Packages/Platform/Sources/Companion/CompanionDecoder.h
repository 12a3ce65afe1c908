#pragma once

#include "CompanionMessage.h"

#include <QByteArrayView>
#include <QStringView>
#include <optional>

namespace tilewright {

/// Reads what is said to come from a companion, and trusts nobody: what lacks a field, has one of
/// another kind or out of its range, is longer, deeper or more than it may be, is none as a whole.
/// Fields that are not known are passed over.
struct CompanionDecoder {
    /// The one version of the protocol that is spoken here.
    static constexpr int protocol = 1;
    /// In bytes.
    static constexpr qsizetype longestMessage = 64 * 1024;
    /// Coordinates and lengths are no further from 0, in the companion's units.
    static constexpr double furthest = 1e6;
    static constexpr int mostDisplays = 32;
    /// In code units.
    static constexpr qsizetype longestText = 256;

    /// The message that a method was called with; `argument` is the JSON text, as UTF-8.
    [[nodiscard]] static std::optional<CompanionMessage> decode(QStringView method,
                                                                const QByteArray& argument);
};

} // namespace tilewright
