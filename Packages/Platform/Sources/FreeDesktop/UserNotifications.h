#pragma once

#include <QString>
#include <functional>

namespace tilewright {

/// Short messages that the desktop shows the user. Main thread only.
class UserNotifications {
public:
    virtual ~UserNotifications() = default;

    /// Shows a message; `chosen` is called when the user clicks it, the latest of all alone.
    /// Returns at once; a desktop without notifications shows nothing.
    virtual void show(const QString& title, const QString& text, std::function<void()> chosen) = 0;
};

} // namespace tilewright
