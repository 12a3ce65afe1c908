#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace tilewright {

/// How long something lives, for tasks that may be due only after its end: what is posted to the
/// event loop, or kept by somebody else. A member of whatever the tasks use; declared last, it ends
/// first. Main thread only.
class Lifetime {
public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    /// The task for as long as this lives; from then on one that does nothing.
    [[nodiscard]] std::function<void()> guard(std::function<void()> task) const {
        return [mark = std::weak_ptr(mark_), task = std::move(task)] {
            if (!mark.expired())
                task();
        };
    }

private:
    struct Mark {};
    std::shared_ptr<const Mark> mark_ = std::make_shared<const Mark>();
};

} // namespace tilewright
