#pragma once

#include "UserNotifications.h"

#include <QDBusConnection>

namespace tilewright {

/// Messages shown by the desktop's notification service (org.freedesktop.Notifications).
class FreeDesktopUserNotifications final : public UserNotifications {
public:
    explicit FreeDesktopUserNotifications(QDBusConnection bus = QDBusConnection::sessionBus());

    void show(const QString& title, const QString& text) override;

private:
    QDBusConnection bus_;
};

} // namespace tilewright
