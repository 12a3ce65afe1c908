#pragma once

#include "X11ActiveWindow.h"

#include <FreeDesktop/FreeDesktopGuidance.h>
#include <Platform/Workspace.h>

class QWindow;

namespace tilewright {

/// The applications as their windows tell of them.
class X11Workspace final : public Workspace {
public:
    X11Workspace(X11Connection& connection, X11ActiveWindow& activeWindow,
                 FreeDesktopGuidance& guidance);

    std::optional<ProcessID> frontmostApplication() const override;
    /// The name that the process's windows give their application; else the process's own.
    std::optional<QString> localizedName(ProcessID process) const override;
    /// Nothing is granted on this desktop: shows the way to what it lacks, if anything.
    void openAccessibilitySettings() override;
    /// Brings the program's topmost window before the others.
    void activateThisApplication() override;
    /// Brings a window of this program before the others.
    void bringForward(QWindow& window);

private:
    void showDesktopOf(xcb_window_t window);

    X11Connection& connection_;
    X11ActiveWindow& activeWindow_;
    FreeDesktopGuidance& guidance_;
};

} // namespace tilewright
