#include "KeepAwakeHeir.h"

#include <KeepAwake/KeepAwakeManager.h>

namespace tilewright {

namespace {

using Seconds = std::chrono::duration<double>;

constexpr MainLoop::Interval firstInterval{250};

Legacy::Interval now() {
    return Platform::current().mainLoop.now();
}

std::optional<Legacy::Session> running() {
    const KeepAwakeManager& manager = KeepAwakeManager::shared();
    if (!manager.isActive() || !manager.session())
        return std::nullopt;
    if (!manager.session()->asTimed())
        return Legacy::Session{};
    const Seconds left(manager.remainingSeconds());
    return Legacy::Session{*manager.session(),
                           now() + std::chrono::duration_cast<Legacy::Interval>(left)};
}

} // namespace

KeepAwakeHeir::KeepAwakeHeir(const std::optional<Legacy::Session>& former, Record record)
    : former_(former)
    , record_(std::move(record))
    , interval_(firstInterval)
    , changes_([this] { tell(); }) {
    changes_.observe(KeepAwakeManager::shared());
    takeUp();
    tell();
}

void KeepAwakeHeir::takeUp() {
    KeepAwakeManager& manager = KeepAwakeManager::shared();
    const double left = former_ ? Seconds(former_->end - now()).count() : 0;
    // The user's own choice since then counts more.
    const bool isDue = former_ && !manager.isActive() && (!former_->session.asTimed() || left > 0);
    if (isDue)
        manager.resume(former_->session, left);
    if (isDue && !manager.isActive() && interval_ <= patience) {
        again_ = ScopedTimer(Platform::current().mainLoop.scheduleOnce(interval_, [this] {
            takeUp();
            tell();
        }));
        interval_ *= 2;
        return;
    }
    former_.reset();
}

void KeepAwakeHeir::tell() {
    // One that is yet to be taken up is handed on, too.
    const std::optional<Legacy::Session> session = running();
    record_(session ? session : former_);
}

} // namespace tilewright
