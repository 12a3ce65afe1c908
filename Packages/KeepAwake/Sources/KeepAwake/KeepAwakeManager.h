#pragma once

#include "KeepAwakeSession.h"

#include <Platform/ObservableObject.h>
#include <Platform/Platform.h>

#include <memory>
#include <optional>

namespace tilewright {

/// Keeps the display awake: holds one power assertion while a session runs, and counts a timed
/// session down once a second, by ticks, never by the clock. A session that cannot get its
/// assertion does not start, silently. Main thread only.
class KeepAwakeManager final : public ObservableObject {
    Q_OBJECT

public:
    [[nodiscard]] static KeepAwakeManager& shared();
    /// Neither stops the countdown's timer nor releases the assertion: ending a session is the job
    /// of `deactivate()`.
    ~KeepAwakeManager() override;

    /// Published: whether a session runs and its assertion is held.
    [[nodiscard]] bool isActive() const { return isActive_.value(); }
    /// Published: the running session.
    [[nodiscard]] const std::optional<KeepAwakeSession>& session() const {
        return session_.value();
    }
    /// Published: the seconds left of a timed session, else 0.
    [[nodiscard]] double remainingSeconds() const { return remainingSeconds_.value(); }

    /// Ends any running session, then starts this one.
    void activate(const KeepAwakeSession& session);
    /// Starts a session as `activate` does; a timed one with these seconds left of its duration, as
    /// when it has run for a while already.
    void resume(const KeepAwakeSession& session, double remainingSeconds);
    /// Ends whatever runs.
    void deactivate();

private:
    friend class SharedInstance<KeepAwakeManager>;
    KeepAwakeManager();

    void scheduleCountdown();
    void tick();

    Published<bool> isActive_{*this, false};
    Published<std::optional<KeepAwakeSession>> session_{*this, std::nullopt};
    Published<double> remainingSeconds_{*this, 0};
    PowerAssertionID assertionID_ = 0;
    std::shared_ptr<Timer> timer_;
    Lifetime life_;
};

} // namespace tilewright
