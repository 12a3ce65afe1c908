#pragma once

#include "AppKitEventMonitor.h"

#include <Platform/Accessibility.h>
#include <Platform/EventMonitors.h>

#include <QObject>
#include <map>
#include <memory>

namespace tilewright {

/// AppKit's event monitors. A global monitor installed before the user granted the permission stays
/// deaf to the keyboard, so global monitors are installed afresh, under the tokens they have, when
/// the permission arrives. Main thread only.
class MacEventMonitors final : public EventMonitors {
public:
    explicit MacEventMonitors(const Accessibility& accessibility);
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
    void installGlobalMonitorsAfresh();

    quint64 lastToken_ = 0;
    std::map<MonitorToken, Monitor> monitors_;
    /// Its end disconnects.
    QObject context_;
};

} // namespace tilewright
