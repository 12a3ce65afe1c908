#pragma once

#include "MessageBus.h"
#include "UserNotifications.h"

#include <QObject>
#include <QString>
#include <functional>

class QDBusMessage;

namespace tilewright {

/// Messages shown by the desktop's notification service (org.freedesktop.Notifications).
class FreeDesktopUserNotifications final : public QObject, public UserNotifications {
    Q_OBJECT

public:
    /// The bus has to outlive this. While it does not answer nothing is shown.
    explicit FreeDesktopUserNotifications(const MessageBus& bus);

    void show(const QString& title, const QString& text, std::function<void()> chosen) override;

private Q_SLOTS:
    void actionInvoked(const QDBusMessage& notice);

private:
    void listenToOwner();
    void listenTo(const QString& service);

    const MessageBus& bus_;
    std::function<void()> chosen_;
    /// The message that can be clicked, and who shows it; none and empty while there is no such
    /// one.
    quint32 shown_ = 0;
    QString heard_;
};

} // namespace tilewright
