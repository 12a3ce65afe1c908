#pragma once

#include "BusSignals.h"
#include "MessageBus.h"
#include "UserNotifications.h"

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <functional>

namespace tilewright {

/// Messages shown by the desktop's notification service (org.freedesktop.Notifications).
class FreeDesktopUserNotifications final : public QObject, public UserNotifications {
    Q_OBJECT

public:
    /// The bus has to outlive this. While it does not answer nothing is shown.
    explicit FreeDesktopUserNotifications(const MessageBus& bus);

    void show(const QString& title, const QString& text, std::function<void()> chosen) override;

private:
    void listenToOwner();
    void actionInvoked(const QDBusMessage& notice);

    const MessageBus& bus_;
    std::function<void()> chosen_;
    /// The message that can be clicked; none while there is no such one.
    quint32 shown_ = 0;
    /// Of the one who shows it.
    BusSignals signals_;
};

} // namespace tilewright
