#pragma once

#include <FreeDesktop/UserNotifications.h>

#include <utility>
#include <vector>

namespace tilewright::testing {

/// Messages to the user, kept.
class FakeUserNotifications final : public UserNotifications {
public:
    void show(const QString& title, const QString& text) override {
        shown.emplace_back(title, text);
    }
    std::vector<std::pair<QString, QString>> shown;
};

} // namespace tilewright::testing
