#pragma once

#include <QStringList>

namespace tilewright {

/// What a run of this package's test helper program came to.
struct TestHelperRun {
    /// Its exit code; -1 when it was killed or did not end in time.
    int exitCode = -1;
    /// The lines it printed.
    QStringList lines;
};

/// Runs the helper program to its end.
[[nodiscard]] TestHelperRun runTestHelper(const QStringList& arguments);

/// The path of the helper program.
[[nodiscard]] QString testHelperPath();

} // namespace tilewright
