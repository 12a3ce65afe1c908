#pragma once

#include "CompanionState.h"

#include <Platform/EventMonitors.h>

#include <QObject>
#include <map>
#include <memory>

namespace tilewright {

/// Input as far as a companion tells of it: while the user drags a window, and no other. A drag's
/// keys, its moves and its release arrive as what they are; one that is cancelled first tells that
/// no key is held. Main thread only.
class CompanionEventMonitors final : public EventMonitors {
public:
    /// The state has to outlive this.
    explicit CompanionEventMonitors(const CompanionState& state);
    ~CompanionEventMonitors() override;

    [[nodiscard]] std::optional<MonitorToken> addGlobalMonitor(EventMask mask,
                                                               Handler handler) override;
    [[nodiscard]] std::optional<MonitorToken> addLocalMonitor(EventMask mask,
                                                              Handler handler) override;
    void removeMonitor(MonitorToken token) override;

private:
    struct Monitor {
        bool isLocal = false;
        EventMask mask;
        Handler handler;
    };

    [[nodiscard]] MonitorToken add(Monitor monitor);
    void deliver(const Event& event, bool isOurs);

    std::map<MonitorToken, std::shared_ptr<const Monitor>> monitors_;
    quint64 lastToken_ = 0;
    /// Ends the connection to the state.
    QObject context_;
};

} // namespace tilewright
