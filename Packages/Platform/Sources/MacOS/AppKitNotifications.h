#pragma once

#include <functional>
#include <memory>

namespace tilewright::appkit {

/// What AppKit and the system announce and this program listens to.
enum class Notification {
    /// A display came, went, moved or changed.
    screenParametersChanged,
    /// Another application than before is the active one.
    applicationActivated,
    /// The user changed how the system displays things, such as its motion.
    displayOptionsChanged,
    /// Some application's accessibility permission changed, perhaps this one's. Announced a moment
    /// before the system answers by it.
    accessibilityPermissionChanged,
    /// A later start of this program asks the running one to show its panel.
    panelRequested,
    /// The user opened the program, which is running, once more.
    reopened,
};

/// Listens for as long as it lives.
class Observation {
public:
    Observation() = default;
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;
    virtual ~Observation() = default;
};

/// Calls back on the main thread at each announcement until the observation ends, also while this
/// program is not the active one. At most one observation of `Notification::reopened` at a time.
[[nodiscard]] std::unique_ptr<Observation> observe(Notification notification,
                                                   std::function<void()> callback);
/// Announces `Notification::panelRequested` to every instance of this program.
void requestPanel();

} // namespace tilewright::appkit
