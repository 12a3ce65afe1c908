#pragma once

#include <QLibraryInfo>
#include <QString>

namespace tilewright::testing {

/// Where a program of Plasma's lies that nobody starts but other programs: beside the system's
/// libraries, whatever processor they are for.
[[nodiscard]] inline QString plasmaProgram(const QString& name) {
    return QLibraryInfo::path(QLibraryInfo::LibrariesPath) + QStringLiteral("/libexec/") + name;
}

} // namespace tilewright::testing
