#pragma once

#include <Platform/EventMonitors.h>

#include <map>
#include <vector>

namespace tilewright::testing {

/// Event monitors to which a test sends events. Counts what was installed and removed.
class FakeEventMonitors final : public EventMonitors {
public:
    enum class Kind { global, local };
    struct Monitor {
        Kind kind;
        EventMask mask;
        Handler handler;
    };

    std::optional<MonitorToken> addGlobalMonitor(EventMask mask, Handler handler) override {
        return add(Kind::global, mask, std::move(handler));
    }
    std::optional<MonitorToken> addLocalMonitor(EventMask mask, Handler handler) override {
        return add(Kind::local, mask, std::move(handler));
    }
    void removeMonitor(MonitorToken token) override {
        removed.push_back(token);
        monitors.erase(token);
    }

    /// Sends an event to every monitor of the kind whose mask holds its type.
    void send(Kind kind, const Event& event) {
        const auto copy = monitors;
        for (const auto& [token, monitor] : copy) {
            if (monitor.kind == kind && monitor.mask.contains(event.type) &&
                monitors.contains(token))
                monitor.handler(event);
        }
    }

    /// The desktop refuses monitors of this kind from now on.
    bool refusesGlobal = false;
    bool refusesLocal = false;

    std::map<MonitorToken, Monitor> monitors;
    std::vector<MonitorToken> installed;
    std::vector<MonitorToken> removed;

private:
    std::optional<MonitorToken> add(Kind kind, EventMask mask, Handler handler) {
        if (kind == Kind::global ? refusesGlobal : refusesLocal)
            return std::nullopt;
        const MonitorToken token{++lastToken_};
        monitors.emplace(token, Monitor{kind, mask, std::move(handler)});
        installed.push_back(token);
        return token;
    }

    quint64 lastToken_ = 0;
};

} // namespace tilewright::testing
