#include "MacEventMonitors.h"

#include <utility>
#include <vector>

namespace tilewright {

namespace {

/// An event's modifier keys without the bits that only some kinds of events carry.
ModifierFlags keysOf(const Event& event) {
    constexpr ModifierFlags known{ModifierFlag::shift, ModifierFlag::control, ModifierFlag::option,
                                  ModifierFlag::command};
    return ModifierFlags(event.modifierFlags.bits() & known.bits());
}

} // namespace

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
    const MonitorToken token{++lastToken_};
    Monitor monitor{kind, mask, std::move(handler), nullptr};
    monitor.installed = install(token, monitor);
    if (!monitor.installed)
        return std::nullopt;
    monitors_.emplace(token, std::move(monitor));
    return token;
}

std::unique_ptr<appkit::EventMonitor> MacEventMonitors::install(MonitorToken token,
                                                                const Monitor& monitor) {
    return appkit::addMonitor(
        monitor.kind, monitor.mask,
        [this, token, kind = monitor.kind, handler = monitor.handler](const Event& event) {
            noteDrag(event);
            noteModifiers(kind, event);
            // Whoever was told of the keys may have removed this monitor.
            if (monitors_.contains(token))
                handler(event);
        });
}

void MacEventMonitors::noteDrag(const Event& event) {
    if (event.type == EventType::leftMouseUp)
        dragging_.reset();
    else if (event.type == EventType::leftMouseDragged && !dragging_ &&
             keysOf(event) != ModifierFlags())
        dragging_ = appkit::beginActivity(QStringLiteral("Dragging a window to a zone"));
}

void MacEventMonitors::noteModifiers(appkit::MonitorKind kind, const Event& event) {
    const ModifierFlags former = std::exchange(modifiers_, keysOf(event));
    if (former == modifiers_ || event.type == EventType::flagsChanged)
        return;
    std::vector<MonitorToken> watching;
    for (const auto& [token, monitor] : monitors_) {
        if (monitor.kind == kind && monitor.mask.contains(EventType::flagsChanged))
            watching.push_back(token);
    }
    for (const MonitorToken token : watching) {
        const auto found = monitors_.find(token);
        if (found == monitors_.end())
            continue;
        // It may remove its own monitor.
        const Handler handler = found->second.handler;
        handler({EventType::flagsChanged, event.modifierFlags});
    }
}

void MacEventMonitors::removeMonitor(MonitorToken token) {
    // Out of the map before it ends: what ends with it may remove monitors too.
    const auto ended = monitors_.extract(token);
    // Nobody is left who would hear of the drag's end.
    if (monitors_.empty())
        dragging_.reset();
}

void MacEventMonitors::installGlobalMonitorsAfresh() {
    for (auto& [token, monitor] : monitors_) {
        if (monitor.kind != appkit::MonitorKind::global)
            continue;
        // The old one first: no event may reach the handler twice.
        monitor.installed.reset();
        monitor.installed = install(token, monitor);
    }
}

} // namespace tilewright
