#include "X11Flood.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace tilewright {

void X11Flood::note(std::uint64_t events) {
    events_ += events;
    if (events_ >= least)
        giveBack();
}

void X11Flood::noteTogether(std::uint64_t events) {
    if (events >= leastTogether)
        hasHeldMany_ = true;
}

void X11Flood::noteCalm() {
    if (hasHeldMany_)
        giveBack();
}

void X11Flood::giveBack() {
    events_ = 0;
    hasHeldMany_ = false;
    ++timesGivenBack_;
#ifdef __GLIBC__
    // By itself it gives back only what lies at the heap's end; what was allocated last, and is
    // still in use, lies there.
    malloc_trim(0);
#endif
}

} // namespace tilewright
