#pragma once

#include "MessageBus.h"

#include <Platform/InstanceActivation.h>

#include <QString>

namespace tilewright {

/// One instance per display, by a name on the session bus: for desktops whose display server keeps
/// no such names itself. Without a bus every start is the first; it makes itself known to later
/// ones on whichever bus is joined from then on.
class FreeDesktopInstanceActivation final : public InstanceActivation {
    Q_OBJECT

public:
    /// `display` names the display as $DISPLAY does, such as ":0" or "host:10.0"; all screens of
    /// one display are the same. The bus has to outlive this.
    FreeDesktopInstanceActivation(const QString& display, MessageBus& bus);
    ~FreeDesktopInstanceActivation() override;

    /// Blocks for a few seconds at most, and that only when the bus or the other instance hangs.
    [[nodiscard]] Claim claim() override;

    /// The bus name that the instance on the display owns.
    [[nodiscard]] const QString& serviceName() const { return serviceName_; }

private:
    void claimAgain();
    [[nodiscard]] bool ownsName();
    [[nodiscard]] bool otherAnswers();
    [[nodiscard]] bool isOwned();

    MessageBus& bus_;
    QString serviceName_;
    bool isFirst_ = false;
};

} // namespace tilewright
