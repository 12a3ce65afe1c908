#pragma once

#include <Platform/EventMonitors.h>

#include <memory>

namespace tilewright::appkit {

/// Whose events a monitor sees: those of other applications, or this one's own.
enum class MonitorKind { global, local };

/// A monitor installed with AppKit, removed when it ends.
class EventMonitor {
public:
    EventMonitor() = default;
    EventMonitor(const EventMonitor&) = delete;
    EventMonitor& operator=(const EventMonitor&) = delete;
    virtual ~EventMonitor() = default;
};

/// Installs a monitor; null when AppKit refuses. The handler may end the monitor that called it. A
/// local monitor passes each event on unchanged.
[[nodiscard]] std::unique_ptr<EventMonitor> addMonitor(MonitorKind kind, EventMask mask,
                                                       EventMonitors::Handler handler);

} // namespace tilewright::appkit
