#pragma once

#include <Platform/UserNotifications.h>

namespace tilewright {

/// Messages through the user notification centre, for which the user's consent is asked once.
class MacUserNotifications final : public UserNotifications {
public:
    void show(const QString& title, const QString& text) override;
};

} // namespace tilewright
