#pragma once

#include <string>

namespace tilewright {

/// What killing a saving process over and over came to.
struct StoreCrashResult {
    /// How often a process was killed.
    int kills = 0;
    /// How many documents were saved in all before those kills.
    long saves = 0;
    /// How often the last acknowledged document was found, and how often its successor.
    int foundOld = 0;
    int foundNew = 0;
    /// How many files were left behind beside the store's own, and how many of them the next start,
    /// some time later, left there.
    int leftBehind = 0;
    int strayFiles = 0;
    /// What went wrong; empty when nothing did.
    std::string failure;
};

/// Kills a process that saves a store without pause, at a random moment, as often as asked, and
/// checks each time that the file holds one whole document: the last one that the process reported
/// as saved or the one after it. Stops at the first failure.
[[nodiscard]] StoreCrashResult crashSavingProcesses(int kills, unsigned seed);

} // namespace tilewright
