#pragma once

#include <QString>
#include <iosfwd>
#include <map>
#include <string>
#include <sys/types.h>

namespace tilewright::testing {

/// What the operating system says of a process.
struct ProcessFigures {
    long residentKiB = 0;
    /// Not shared with any other process.
    long privateKiB = 0;
    /// Of no file: what the process itself wrote, and nothing that depends on other processes.
    long anonymousKiB = 0;
    /// Shared with other processes by name or number, as pixels are with an X server, and written
    /// to.
    long sharedMemoryKiB = 0;
    int fileDescriptors = 0;
    /// How often it gave up the processor by itself: it had been woken for something before.
    long voluntarySwitches = 0;
    /// Processor time used, in microseconds as far as the system counts.
    long cpuMicroseconds = 0;
};
[[nodiscard]] ProcessFigures processFigures(pid_t process);

/// How many resources of each type a process's connections hold on an X server, as the server
/// counts them.
using XResources = std::map<std::string, long>;
[[nodiscard]] XResources xResources(const QString& display, pid_t process);

/// What a process holds beside memory.
struct Holdings {
    int fileDescriptors = 0;
    XResources resources;
    /// Of everybody on the X server.
    std::size_t windows = 0;

    /// Whether nothing is more than in `bound`. Counts may be smaller: some is given back only a
    /// moment after its use. Pointer shapes are made at their first use and kept, so that only
    /// their number is bounded.
    [[nodiscard]] bool isWithin(const Holdings& bound) const;
};
/// Prints them in a failed test's message.
void PrintTo(const Holdings& holdings, std::ostream* out);

} // namespace tilewright::testing
