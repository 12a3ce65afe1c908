#include "X11Flood.h"

#include <FreeDesktop/CalmMemory.h>

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
    giveBackHeap();
}

} // namespace tilewright
