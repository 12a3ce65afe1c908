#include "InputSoFar.h"

#include <Platform/Platform.h>

#include <QPointer>

namespace tilewright {

namespace {

/// What the server sent before it answers is handed out before what is posted after the answer.
void afterOneAnswer(QObject* context, std::function<void()> then) {
    static_cast<void>(Platform::current().pointer.location());
    Platform::current().mainLoop.post(
        [context = QPointer<QObject>(context), then = std::move(then)] {
            if (context)
                then();
        });
}

} // namespace

void afterInputSoFar(QObject* context, std::function<void()> then) {
    // The first answer brings the input to the backend, which asks the server how keys and buttons
    // stand after it; the second comes after that.
    afterOneAnswer(context, [context, then = std::move(then)] { afterOneAnswer(context, then); });
}

} // namespace tilewright
