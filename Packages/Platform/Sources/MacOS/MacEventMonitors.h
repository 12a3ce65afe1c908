#pragma once

#include "AppKitActivity.h"
#include "AppKitEventMonitor.h"

#include <Platform/Accessibility.h>
#include <Platform/EventMonitors.h>

#include <QObject>
#include <map>
#include <memory>

namespace tilewright {

/// AppKit's event monitors. A global monitor installed before the user granted the permission stays
/// deaf to the keyboard, so global monitors are installed afresh, under the tokens they have, when
/// the permission arrives.
///
/// The release of a modifier key never arrives where the screen was locked with it held, or where
/// secure input began: each other event tells the keys that are held, and where those are others
/// than before, the monitors that watch the keys are told of the change first.
///
/// From the first event of a drag with a modifier held to the button's release the system is asked
/// not to slow this program down, as it does with one that has shown nothing for a while. Main
/// thread only.
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
    [[nodiscard]] std::unique_ptr<appkit::EventMonitor> install(MonitorToken token,
                                                                const Monitor& monitor);
    /// Remembers the modifier keys of an event that a monitor of the kind received, and tells of
    /// those that changed unnoticed.
    void noteModifiers(appkit::MonitorKind kind, const Event& event);
    void noteDrag(const Event& event);
    void installGlobalMonitorsAfresh();

    quint64 lastToken_ = 0;
    std::map<MonitorToken, Monitor> monitors_;
    /// The modifier keys that were held at the latest event.
    ModifierFlags modifiers_;
    /// While a drag with a modifier is under way.
    std::unique_ptr<appkit::Activity> dragging_;
    /// Its end disconnects.
    QObject context_;
};

} // namespace tilewright
