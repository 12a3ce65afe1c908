#include "CompanionEventMonitors.h"

namespace tilewright {

CompanionEventMonitors::CompanionEventMonitors(const CompanionState& state) {
    QObject::connect(&state, &CompanionState::input, &context_,
                     [this](const Event& event, bool isOurs) { deliver(event, isOurs); });
}

CompanionEventMonitors::~CompanionEventMonitors() = default;

std::optional<MonitorToken> CompanionEventMonitors::addGlobalMonitor(EventMask mask,
                                                                     Handler handler) {
    return add({false, mask, std::move(handler)});
}

std::optional<MonitorToken> CompanionEventMonitors::addLocalMonitor(EventMask mask,
                                                                    Handler handler) {
    return add({true, mask, std::move(handler)});
}

MonitorToken CompanionEventMonitors::add(Monitor monitor) {
    const MonitorToken token{++lastToken_};
    monitors_.emplace(token, std::make_shared<const Monitor>(std::move(monitor)));
    return token;
}

void CompanionEventMonitors::removeMonitor(MonitorToken token) {
    monitors_.erase(token);
}

void CompanionEventMonitors::deliver(const Event& event, bool isOurs) {
    // A copy: handlers add and remove monitors, and a new one hears nothing of what was before.
    const auto monitors = monitors_;
    for (const auto& [token, monitor] : monitors) {
        if (monitor->isLocal == isOurs && monitor->mask.contains(event.type) &&
            monitors_.contains(token))
            monitor->handler(event);
    }
}

} // namespace tilewright
