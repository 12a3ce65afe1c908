#pragma once

#include "CompanionOutbox.h"
#include "CompanionState.h"

#include <FreeDesktop/FreeDesktopInstanceActivation.h>
#include <Platform/InstanceActivation.h>
#include <Platform/MainLoop.h>

namespace tilewright {

/// One instance per display, as elsewhere; a later start is told of once the companion has said
/// where the pointer is, since the panel opens there. Main thread only.
class CompanionInstanceActivation final : public InstanceActivation {
    Q_OBJECT

public:
    /// How long the companion has to say it. A compositor that is too busy to has no panel to show
    /// either.
    static constexpr std::chrono::milliseconds answerBound{1000};

    /// `display` names the compositor's socket. All others have to outlive this.
    CompanionInstanceActivation(const QString& display, MessageBus& bus, CompanionState& state,
                                CompanionOutbox& outbox, MainLoop& loop);
    ~CompanionInstanceActivation() override;

    [[nodiscard]] Claim claim() override { return instance_.claim(); }

private:
    void asked();
    void tell();

    CompanionState& state_;
    CompanionOutbox& outbox_;
    MainLoop& loop_;
    FreeDesktopInstanceActivation instance_;
    ScopedTimer wait_;
};

} // namespace tilewright
