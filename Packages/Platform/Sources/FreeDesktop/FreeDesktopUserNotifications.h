#pragma once

#include "MessageBus.h"
#include "UserNotifications.h"

namespace tilewright {

/// Messages shown by the desktop's notification service (org.freedesktop.Notifications).
class FreeDesktopUserNotifications final : public UserNotifications {
public:
    /// The bus has to outlive this. While it does not answer nothing is shown.
    explicit FreeDesktopUserNotifications(const MessageBus& bus);

    void show(const QString& title, const QString& text) override;

private:
    const MessageBus& bus_;
};

} // namespace tilewright
