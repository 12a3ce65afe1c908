#include "CompanionInstanceActivation.h"

namespace tilewright {

CompanionInstanceActivation::CompanionInstanceActivation(const QString& display, MessageBus& bus,
                                                         CompanionState& state,
                                                         CompanionOutbox& outbox, MainLoop& loop)
    : state_(state)
    , outbox_(outbox)
    , loop_(loop)
    , instance_(display, bus) {
    connect(&instance_, &InstanceActivation::activationRequested, this,
            &CompanionInstanceActivation::asked);
    connect(&state_, &CompanionState::pointerTold, this, [this] {
        if (wait_.isActive())
            tell();
    });
}

CompanionInstanceActivation::~CompanionInstanceActivation() = default;

void CompanionInstanceActivation::asked() {
    if (!state_.isConnected()) {
        tell();
        return;
    }
    outbox_.askForPointer();
    wait_ = ScopedTimer(loop_.scheduleOnce(answerBound, [this] { tell(); }));
}

void CompanionInstanceActivation::tell() {
    wait_.reset();
    Q_EMIT activationRequested();
}

} // namespace tilewright
