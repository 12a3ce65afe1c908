#pragma once

#include <algorithm>
#include <cstdio>
#include <vector>

namespace tilewright::testing {

/// The value that `part` of the others (0 to 1) do not exceed; 0 where there are none.
inline double percentile(std::vector<double> values, double part) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, std::size_t(part * double(values.size())))];
}

/// The upper one of the two in the middle where their number is even; 0 where there are none.
inline double median(const std::vector<double>& values) {
    return percentile(values, 0.5);
}

/// Prints a line about times in milliseconds, given in the order in which they were taken: the
/// first is often the one that pays for the others. Prints nothing where there are none.
inline void printTimes(const char* what, const std::vector<double>& milliseconds) {
    if (milliseconds.empty())
        return;
    std::printf("%-58s first %6.1f ms, median %6.1f ms, longest %6.1f ms, of %zu\n", what,
                milliseconds.front(), median(milliseconds), percentile(milliseconds, 1),
                milliseconds.size());
    std::fflush(stdout);
}

} // namespace tilewright::testing
