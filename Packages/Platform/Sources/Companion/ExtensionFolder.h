#pragma once

#include <QString>

namespace tilewright {

/// Whether a desktop takes that folder for an extension of its own: it describes itself.
[[nodiscard]] bool isExtensionFolder(const QString& folder);

/// Copies an extension with all its folders, over an older one where there is one. What is there
/// when it fails is no extension.
[[nodiscard]] bool installExtensionFolder(const QString& from, const QString& to);

} // namespace tilewright
