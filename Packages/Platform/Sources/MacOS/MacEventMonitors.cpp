#include "MacEventMonitors.h"

namespace tilewright {

MacEventMonitors::MacEventMonitors(const Accessibility& accessibility) {
    QObject::connect(&accessibility, &Accessibility::trustChanged, &context_,
                     [this, &accessibility] {
                         if (accessibility.isTrusted())
                             installGlobalMonitorsAfresh();
                     });
}

MacEventMonitors::~MacEventMonitors() = default;

std::optional<MonitorToken> MacEventMonitors::addGlobalMonitor(EventMask mask, Handler handler) {
    return add(appkit::MonitorKind::global, mask, std::move(handler));
}

std::optional<MonitorToken> MacEventMonitors::addLocalMonitor(EventMask mask, Handler handler) {
    return add(appkit::MonitorKind::local, mask, std::move(handler));
}

std::optional<MonitorToken> MacEventMonitors::add(appkit::MonitorKind kind, EventMask mask,
                                                  Handler handler) {
    auto installed = appkit::addMonitor(kind, mask, handler);
    if (!installed)
        return std::nullopt;
    const MonitorToken token{++lastToken_};
    monitors_.emplace(token, Monitor{kind, mask, std::move(handler), std::move(installed)});
    return token;
}

void MacEventMonitors::removeMonitor(MonitorToken token) {
    // Out of the map before it ends: what ends with it may remove monitors too.
    const auto ended = monitors_.extract(token);
}

void MacEventMonitors::installGlobalMonitorsAfresh() {
    for (auto& [token, monitor] : monitors_) {
        if (monitor.kind != appkit::MonitorKind::global)
            continue;
        // The old one first: no event may reach the handler twice.
        monitor.installed.reset();
        monitor.installed = appkit::addMonitor(monitor.kind, monitor.mask, monitor.handler);
    }
}

} // namespace tilewright
