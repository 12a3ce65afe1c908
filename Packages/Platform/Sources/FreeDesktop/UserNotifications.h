#pragma once

#include <QString>

namespace tilewright {

/// Short messages that the desktop shows the user. Main thread only.
class UserNotifications {
public:
    virtual ~UserNotifications() = default;

    /// Shows a message. Returns at once; a desktop without notifications shows nothing.
    virtual void show(const QString& title, const QString& text) = 0;
};

} // namespace tilewright
