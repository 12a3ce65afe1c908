#include "MacEventMonitors.h"

#include "AppKitNotifications.h"

#include <array>

namespace tilewright {

namespace {

/// The system announces a change of the permission a moment before it answers by it.
constexpr std::array looks{std::chrono::milliseconds{250}, std::chrono::milliseconds{1000},
                           std::chrono::milliseconds{4000}};

} // namespace

MacEventMonitors::MacEventMonitors(const Accessibility& accessibility, MainLoop& loop)
    : accessibility_(accessibility)
    , loop_(loop)
    , wasTrusted_(accessibility.isTrusted())
    , observation_(appkit::observe(appkit::Notification::accessibilityPermissionChanged,
                                   [this] { lookForPermission(0); })) {}

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

void MacEventMonitors::lookForPermission(std::size_t look) {
    nextLook_ = ScopedTimer(loop_.scheduleOnce(looks.at(look), [this, look] {
        const bool isTrusted = accessibility_.isTrusted();
        if (isTrusted && !wasTrusted_)
            installGlobalMonitorsAfresh();
        else if (isTrusted == wasTrusted_ && look + 1 < looks.size())
            lookForPermission(look + 1);
        wasTrusted_ = isTrusted;
    }));
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
