#pragma once

#include <Platform/Accessibility.h>
#include <Platform/EventMonitors.h>
#include <Platform/MainLoop.h>

#include <map>
#include <memory>

namespace tilewright {

/// AppKit's event monitors. A global monitor installed before the user granted the permission stays
/// deaf to the keyboard, so global monitors are installed afresh when the permission arrives. Main
/// thread only; the arguments have to outlive it.
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
    class Monitor;
    class PermissionObservation;

    [[nodiscard]] std::optional<MonitorToken> add(std::unique_ptr<Monitor> monitor);
    void permissionMayHaveChanged();

    const Accessibility& accessibility_;
    MainLoop& loop_;
    bool wasTrusted_;
    quint64 lastToken_ = 0;
    std::map<MonitorToken, std::unique_ptr<Monitor>> monitors_;
    std::unique_ptr<PermissionObservation> observation_;
    ScopedTimer lateLook_;
};

} // namespace tilewright
