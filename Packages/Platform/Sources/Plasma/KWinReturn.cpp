#include "KWinReturn.h"

#include "KWinCompanion.h"

#include <FreeDesktop/WaylandSocket.h>

#include <utility>

namespace tilewright {

KWinReturn::KWinReturn(MainLoop& loop, MessageBus& bus, QString socketPath)
    : bus_(bus)
    , socketPath_(std::move(socketPath))
    , compositor_(loop, socketPath_)
    , deadline_(loop.scheduleOnce(patience, [this, &loop] {
        if (connectToWaylandSocket(socketPath_).outcome == WaylandSocketResult::Outcome::nobody)
            settle(&KWinReturn::missing);
        else
            deadline_ = ScopedTimer(loop.scheduleOnce(patienceWithListener - patience,
                                                      [this] { settle(&KWinReturn::missing); }));
    })) {
    connect(&compositor_, &WaylandConnection::ready, this, &KWinReturn::look);
    connect(&bus_, &MessageBus::joined, this, &KWinReturn::look);
    connect(&bus_, &MessageBus::left, this, [this] { settle(&KWinReturn::missing); });
    // Whoever made this has yet to listen to it.
    QMetaObject::invokeMethod(this, &KWinReturn::look, Qt::QueuedConnection);
}

KWinReturn::~KWinReturn() = default;

void KWinReturn::look() {
    if (bus_.isAbsent()) {
        settle(&KWinReturn::missing);
        return;
    }
    if (bus_.isJoined() && !name_) {
        name_ = std::make_unique<BusNameOwner>(bus_.connection(), KWinCompanion::compositorName());
        connect(name_.get(), &BusNameOwner::changed, this, &KWinReturn::look);
    }
    // The bus alone may not have noticed yet that the former one is gone.
    if (compositor_.isReady() && name_ && !name_->owner().isEmpty())
        settle(&KWinReturn::returned);
}

void KWinReturn::settle(void (KWinReturn::*outcome)()) {
    if (!std::exchange(isSettled_, true))
        Q_EMIT(this->*outcome)();
}

} // namespace tilewright
