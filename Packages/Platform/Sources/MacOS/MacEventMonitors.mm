#include "MacEventMonitors.h"

#include "MacText.h"

#include <AppKit/AppKit.h>

namespace tilewright {

namespace {

Event toEvent(NSEvent* event) {
    return {static_cast<EventType>([event type]),
            ModifierFlags(static_cast<quint32>([event modifierFlags]))};
}

/// The system announces a change of the permission just before it answers by it.
constexpr std::chrono::milliseconds untilPermissionHolds{250};

} // namespace

/// One installed monitor; removed from AppKit when it ends.
class MacEventMonitors::Monitor {
  public:
    enum class Kind { global, local };

    Monitor(Kind kind, EventMask mask, Handler handler)
        : kind_(kind), mask_(mask), handler_(std::make_shared<Handler>(std::move(handler))) {
        install();
    }
    ~Monitor() { uninstall(); }
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    [[nodiscard]] bool isInstalled() const { return token_ != nil; }
    [[nodiscard]] Kind kind() const { return kind_; }

    void install() {
        uninstall();
        const auto mask = static_cast<NSEventMask>(mask_.value());
        // The block keeps the handler alive while it runs, even if it removes its own monitor.
        const std::shared_ptr<Handler> handler = handler_;
        if (kind_ == Kind::global) {
            token_ = [NSEvent addGlobalMonitorForEventsMatchingMask:mask
                                                            handler:^(NSEvent* event) {
                                                              (*handler)(toEvent(event));
                                                            }];
        } else {
            token_ = [NSEvent addLocalMonitorForEventsMatchingMask:mask
                                                           handler:^NSEvent*(NSEvent* event) {
                                                             (*handler)(toEvent(event));
                                                             return event;
                                                           }];
        }
    }

  private:
    void uninstall() {
        if (token_)
            [NSEvent removeMonitor:token_];
        token_ = nil;
    }

    const Kind kind_;
    const EventMask mask_;
    const std::shared_ptr<Handler> handler_;
    id token_ = nil;
};

class MacEventMonitors::PermissionObservation {
  public:
    explicit PermissionObservation(MacEventMonitors& monitors) {
        MacEventMonitors* const observer = &monitors;
        token_ = [[NSDistributedNotificationCenter defaultCenter]
            addObserverForName:toNSString(QStringLiteral("com.apple.accessibility.api"))
                        object:nil
                         queue:[NSOperationQueue mainQueue]
                    usingBlock:^(NSNotification*) {
                      observer->lateLook_ = ScopedTimer(
                          observer->loop_.scheduleOnce(untilPermissionHolds, [observer] {
                              observer->permissionMayHaveChanged();
                          }));
                    }];
    }
    ~PermissionObservation() {
        [[NSDistributedNotificationCenter defaultCenter] removeObserver:token_];
    }
    PermissionObservation(const PermissionObservation&) = delete;
    PermissionObservation& operator=(const PermissionObservation&) = delete;

  private:
    id token_ = nil;
};

MacEventMonitors::MacEventMonitors(const Accessibility& accessibility, MainLoop& loop)
    : accessibility_(accessibility), loop_(loop), wasTrusted_(accessibility.isTrusted()),
      observation_(std::make_unique<PermissionObservation>(*this)) {}

MacEventMonitors::~MacEventMonitors() = default;

std::optional<MonitorToken> MacEventMonitors::add(std::unique_ptr<Monitor> monitor) {
    if (!monitor->isInstalled())
        return std::nullopt;
    const MonitorToken token{++lastToken_};
    monitors_.emplace(token, std::move(monitor));
    return token;
}

std::optional<MonitorToken> MacEventMonitors::addGlobalMonitor(EventMask mask, Handler handler) {
    return add(std::make_unique<Monitor>(Monitor::Kind::global, mask, std::move(handler)));
}

std::optional<MonitorToken> MacEventMonitors::addLocalMonitor(EventMask mask, Handler handler) {
    return add(std::make_unique<Monitor>(Monitor::Kind::local, mask, std::move(handler)));
}

void MacEventMonitors::removeMonitor(MonitorToken token) { monitors_.erase(token); }

void MacEventMonitors::permissionMayHaveChanged() {
    const bool isTrusted = accessibility_.isTrusted();
    if (isTrusted && !wasTrusted_) {
        for (const auto& [token, monitor] : monitors_) {
            if (monitor->kind() == Monitor::Kind::global)
                monitor->install();
        }
    }
    wasTrusted_ = isTrusted;
}

} // namespace tilewright
