#include "InstanceActivation.h"

namespace tilewright {

InstanceActivation::~InstanceActivation() = default;

void InstanceActivation::requestActivation() {
    request_.post();
}

} // namespace tilewright
