#pragma once

#include <FreeDesktop/UserNotifications.h>

#include <utility>
#include <vector>

namespace tilewright::testing {

/// Messages to the user, kept.
class FakeUserNotifications final : public UserNotifications {
public:
    void show(const QString& title, const QString& text, std::function<void()> chosen) override {
        shown.emplace_back(title, text);
        choose = std::move(chosen);
    }
    std::vector<std::pair<QString, QString>> shown;
    /// The user's click on the latest.
    std::function<void()> choose;
};

} // namespace tilewright::testing
