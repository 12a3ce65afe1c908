#pragma once

#include "X11ActiveWindow.h"
#include "X11Trust.h"

#include <FreeDesktop/FreeDesktopGuidance.h>
#include <Platform/Workspace.h>

namespace tilewright {

/// The applications as their windows tell of them.
class X11Workspace final : public Workspace {
public:
    X11Workspace(X11Connection& connection, X11ActiveWindow& activeWindow, const X11Trust& trust,
                 FreeDesktopGuidance& guidance);

    std::optional<ProcessID> frontmostApplication() const override;
    /// The name that the process's windows give their application; else the process's own.
    std::optional<QString> localizedName(ProcessID process) const override;
    /// Nothing is granted on this desktop: shows the way to what it lacks, if anything.
    void openAccessibilitySettings() override;
    /// Brings the program's topmost window before the others.
    void activateThisApplication() override;

private:
    void showDesktopOf(xcb_window_t window);

    X11Connection& connection_;
    X11ActiveWindow& activeWindow_;
    const X11Trust& trust_;
    FreeDesktopGuidance& guidance_;
};

} // namespace tilewright
