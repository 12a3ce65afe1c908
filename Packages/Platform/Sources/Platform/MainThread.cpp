#include "MainThread.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace tilewright {

namespace {
// Static initialisation runs on the main thread, before anything else could start one.
const std::thread::id mainThread = std::this_thread::get_id();
} // namespace

bool isMainThread() {
    return std::this_thread::get_id() == mainThread;
}

void assertMainThread(const char* file, int line) {
    if (isMainThread())
        return;
    std::fprintf(stderr, "%s:%d: must be called on the main thread\n", file, line);
    std::abort();
}

} // namespace tilewright
