#include "InstanceActivation.h"

#include <utility>

namespace tilewright {

InstanceActivation::~InstanceActivation() = default;

void InstanceActivation::requestActivation() {
    if (std::exchange(isRequestPosted_, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            isRequestPosted_ = false;
            Q_EMIT activationRequested();
        },
        Qt::QueuedConnection);
}

} // namespace tilewright
