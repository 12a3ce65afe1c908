#include "CompositorInput.h"

namespace tilewright::testing {

void CompositorInput::glide(QPoint to, int steps) {
    const QPoint from = place();
    for (int step = 1; step <= steps; ++step)
        move(from + (to - from) * step / steps);
}

void CompositorInput::click() {
    press();
    release();
}

void CompositorInput::tap(KernelKey key) {
    pressKey(key);
    releaseKey(key);
}

} // namespace tilewright::testing
