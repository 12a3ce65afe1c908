#include "MacInstanceActivation.h"

#include "AppKitApplications.h"
#include "AppKitNotifications.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace tilewright {

namespace {

/// Of instances that start together all but one have to give way, and each has to find the same
/// one.
bool isAnotherFirst() {
    const std::vector<appkit::RunningInstance> instances = appkit::runningInstances();
    const auto age = [](const appkit::RunningInstance& instance) {
        return std::pair(instance.launchedAt, instance.process);
    };
    const auto first = std::min_element(
        instances.begin(), instances.end(),
        [&](const auto& left, const auto& right) { return age(left) < age(right); });
    return first != instances.end() && first->process != getpid();
}

} // namespace

MacInstanceActivation::MacInstanceActivation() = default;
MacInstanceActivation::~MacInstanceActivation() = default;

InstanceActivation::Claim MacInstanceActivation::claim() {
    if (isAnotherFirst()) {
        appkit::requestPanel();
        return Claim::another;
    }
    const auto request = [this] { Q_EMIT activationRequested(); };
    requests_ = appkit::observe(appkit::Notification::panelRequested, request);
    reopenings_ = appkit::observe(appkit::Notification::reopened, request);
    return Claim::first;
}

} // namespace tilewright
