#pragma once

#include <Platform/Workspace.h>

#include <memory>

namespace tilewright {

namespace appkit {
class Observation;
}

/// The workspace as AppKit tells it. The application in front is the last one that is not this
/// program: its panel, or its settings, in front of what the user works in change nothing. Main
/// thread only.
class MacWorkspace final : public Workspace {
    Q_OBJECT

public:
    MacWorkspace();
    ~MacWorkspace() override;

    [[nodiscard]] std::optional<ProcessID> frontmostApplication() const override;
    [[nodiscard]] std::optional<QString> localizedName(ProcessID process) const override;
    void openAccessibilitySettings() override;
    void activateThisApplication() override;
    /// Gives the keyboard back to the application in front of which this one is. Nothing where this
    /// one is not the active one.
    void returnToFormerApplication();

private:
    /// Remembers the application in front; false when that is this program.
    bool noteFrontmost() const;

    mutable std::optional<ProcessID> lastOther_;
    std::unique_ptr<appkit::Observation> observation_;
};

} // namespace tilewright
