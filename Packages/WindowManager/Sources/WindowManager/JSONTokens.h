#pragma once

#include <QByteArrayView>

namespace tilewright {

/// Checks what QJsonDocument lets pass although JSON does not allow it: strings with bare control
/// characters or unknown escapes, and numbers such as "1." and ".5".
class JSONTokens {
public:
    JSONTokens() = delete;

    /// Whether every string and number is well formed, in a document that QJsonDocument accepts.
    [[nodiscard]] static bool areWellFormed(QByteArrayView document);
};

} // namespace tilewright
