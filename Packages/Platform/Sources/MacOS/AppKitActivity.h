#pragma once

#include <QString>
#include <memory>

namespace tilewright::appkit {

/// Something under way that the user waits for: while it lives, the system does not slow this
/// program down as one that is idle. It keeps nothing else awake.
class Activity {
public:
    Activity() = default;
    Activity(const Activity&) = delete;
    Activity& operator=(const Activity&) = delete;
    virtual ~Activity() = default;
};

/// Begins an activity, under a reason that the system's own tools show.
[[nodiscard]] std::unique_ptr<Activity> beginActivity(const QString& reason);

} // namespace tilewright::appkit
