#pragma once

#include <cstdio>

namespace tilewright::testing {

/// To be called when a test does a step of its own once more because of a fault of a window
/// manager: it writes so to the test's output, and the run of all tests ends with how often that
/// was. `what` is a line.
inline void tellRepetition(const char* what) {
    std::printf("repeated: %s\n", what);
    static_cast<void>(std::fflush(stdout));
}

} // namespace tilewright::testing
