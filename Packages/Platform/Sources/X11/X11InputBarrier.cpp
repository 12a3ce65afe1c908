#include "X11InputBarrier.h"

namespace tilewright {

void X11InputBarrier::whenPassed(std::function<void()> then) const {
    // The first answer brings the input to the backend, which asks the server how keys and buttons
    // stand after it; the second comes after that.
    afterOneAnswer([this, then = std::move(then)] { afterOneAnswer(then); });
}

void X11InputBarrier::afterOneAnswer(std::function<void()> then) const {
    // What the server sent before it answers is handed out before what is posted after the answer.
    static_cast<void>(pointer_.location());
    loop_.post(life_.guard(std::move(then)));
}

} // namespace tilewright
