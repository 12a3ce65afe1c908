#include "KeepAwakeManager.h"

using namespace std::chrono_literals;

namespace tilewright {

namespace {
constexpr quint32 levelOn = 255;
} // namespace

KeepAwakeManager::KeepAwakeManager() = default;
KeepAwakeManager::~KeepAwakeManager() = default;

KeepAwakeManager& KeepAwakeManager::shared() {
    return SharedInstance<KeepAwakeManager>::get();
}

void KeepAwakeManager::activate(const KeepAwakeSession& session) {
    // The caller may pass our own session, which ending it would clear.
    const KeepAwakeSession next = session;
    deactivate();
    const PowerAssertionResult assertion = Platform::current().powerAssertions.create(
        QStringLiteral("PreventUserIdleDisplaySleep"), levelOn,
        QStringLiteral("Tilewright keep-awake"));
    if (assertion.status != 0)
        return;
    assertionID_ = assertion.id;
    session_ = next;
    isActive_ = true;
    if (const auto* timed = next.asTimed()) {
        remainingSeconds_ = timed->duration;
        scheduleCountdown();
    }
}

void KeepAwakeManager::resume(const KeepAwakeSession& session, double remainingSeconds) {
    activate(session);
    if (isActive() && session.asTimed())
        remainingSeconds_ = remainingSeconds;
}

void KeepAwakeManager::deactivate() {
    if (timer_)
        timer_->invalidate();
    timer_.reset();
    if (assertionID_ != 0) {
        Platform::current().powerAssertions.release(assertionID_);
        assertionID_ = 0;
    }
    isActive_ = false;
    session_ = std::nullopt;
    remainingSeconds_ = 0.0;
}

void KeepAwakeManager::scheduleCountdown() {
    // The timer may outlive both this object and the platform's installation, but never its loop.
    MainLoop& loop = Platform::current().mainLoop;
    timer_ = loop.scheduleRepeating(
        1s, [&loop, tick = life_.guard([this] { this->tick(); })] { loop.post(tick); });
}

void KeepAwakeManager::tick() {
    remainingSeconds_ = remainingSeconds() - 1;
    if (remainingSeconds() <= 0)
        deactivate();
}

} // namespace tilewright
