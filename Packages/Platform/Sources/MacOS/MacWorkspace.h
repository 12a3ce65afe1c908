#pragma once

#include <Platform/Workspace.h>

#include <memory>

namespace tilewright {

namespace appkit {
class Observation;
}

/// The workspace as AppKit tells it. Main thread only.
class MacWorkspace final : public Workspace {
    Q_OBJECT

public:
    MacWorkspace();
    ~MacWorkspace() override;

    [[nodiscard]] std::optional<ProcessID> frontmostApplication() const override;
    [[nodiscard]] std::optional<QString> localizedName(ProcessID process) const override;
    void openAccessibilitySettings() override;
    void activateThisApplication() override;
    [[nodiscard]] bool blendsWindows() const override { return true; }

private:
    std::unique_ptr<appkit::Observation> observation_;
};

} // namespace tilewright
