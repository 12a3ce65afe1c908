#pragma once

#include "CompanionOutbox.h"
#include "CompanionState.h"

#include <Platform/Workspace.h>

#include <functional>

class QWindow;

namespace tilewright {

/// The applications as far as a companion tells of their windows. Main thread only.
class CompanionWorkspace final : public Workspace {
    Q_OBJECT

public:
    /// `showGuidance` shows the user the way to what is missing. The others have to outlive this.
    CompanionWorkspace(CompanionState& state, CompanionOutbox& outbox,
                       std::function<void()> showGuidance);
    ~CompanionWorkspace() override;

    [[nodiscard]] std::optional<ProcessID> frontmostApplication() const override;
    /// The process's own name.
    [[nodiscard]] std::optional<QString> localizedName(ProcessID process) const override;
    void openAccessibilitySettings() override { showGuidance_(); }
    /// Brings the window of this program that was shown last before all others.
    void activateThisApplication() override;
    /// Brings a window of this program before all others.
    void bringForward(QWindow& window);

private:
    CompanionState& state_;
    CompanionOutbox& outbox_;
    const std::function<void()> showGuidance_;
};

} // namespace tilewright
