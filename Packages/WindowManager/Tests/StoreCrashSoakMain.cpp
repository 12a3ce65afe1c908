// The crash test at length: store_crash_soak [kills]. Prints what it found.

#include "StoreCrash.h"

#include <QByteArray>
#include <cstdio>
#include <random>

int main(int argc, char** argv) {
    const int kills = argc > 1 ? QByteArray(argv[1]).toInt() : 1000;
    const unsigned seed = std::random_device{}();
    const auto result = tilewright::crashSavingProcesses(kills, seed);
    std::printf("seed %u: %d processes killed after %ld saves; %d times the old document, %d times "
                "the new one; %d files left behind, %d of them after the next start\n",
                seed, result.kills, result.saves, result.foundOld, result.foundNew,
                result.leftBehind, result.strayFiles);
    if (!result.failure.empty())
        std::printf("FAILED: %s\n", result.failure.c_str());
    return result.failure.empty() && result.strayFiles == 0 && result.kills == kills ? 0 : 1;
}
