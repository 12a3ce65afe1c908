#pragma once

#include "AppKitEventMonitor.h"

#include <Platform/Accessibility.h>
#include <Platform/EventMonitors.h>
#include <Platform/MainLoop.h>

#include <map>
#include <memory>

namespace tilewright {

namespace appkit {
class Observation;
}

/// AppKit's event monitors. A global monitor installed before the user granted the permission stays
/// deaf to the keyboard, so global monitors are installed afresh, under the tokens they have, when
/// the permission arrives. Main thread only; the arguments have to outlive it.
class MacEventMonitors final : public EventMonitors {
public:
    MacEventMonitors(const Accessibility& accessibility, MainLoop& loop);
    ~MacEventMonitors() override;

    [[nodiscard]] std::optional<MonitorToken> addGlobalMonitor(EventMask mask,
                                                               Handler handler) override;
    [[nodiscard]] std::optional<MonitorToken> addLocalMonitor(EventMask mask,
                                                              Handler handler) override;
    void removeMonitor(MonitorToken token) override;

private:
    struct Monitor {
        appkit::MonitorKind kind;
        EventMask mask;
        Handler handler;
        std::unique_ptr<appkit::EventMonitor> installed;
    };

    [[nodiscard]] std::optional<MonitorToken> add(appkit::MonitorKind kind, EventMask mask,
                                                  Handler handler);
    /// Looks, soon and a few times more, whether the permission has arrived.
    void lookForPermission(std::size_t look);
    void installGlobalMonitorsAfresh();

    const Accessibility& accessibility_;
    MainLoop& loop_;
    bool wasTrusted_;
    quint64 lastToken_ = 0;
    std::map<MonitorToken, Monitor> monitors_;
    ScopedTimer nextLook_;
    std::unique_ptr<appkit::Observation> observation_;
};

} // namespace tilewright
