#pragma once

#include "X11MovedWindows.h"
#include "X11Screens.h"
#include "X11Trust.h"
#include "X11WindowElement.h"

#include <Platform/Accessibility.h>

namespace tilewright {

/// Other applications' windows by way of the window manager. What a call needs of other programs it
/// asks of the X server alone: a client that has stopped cannot stop it.
class X11Accessibility final : public Accessibility {
    Q_OBJECT

public:
    X11Accessibility(X11Connection& connection, const X11WindowManagerWatch& windowManager,
                     const X11MovedWindows& movedWindows, const X11Screens& screens,
                     X11Trust& trust, X11ActiveWindow& activeWindow, X11FrameSetter& frameSetter);

    bool isTrusted() const override { return trust_.isTrusted(); }
    bool requestTrust() override { return trust_.request(); }
    AccessibilityElement systemWideElement() const override;
    AccessibilityElement applicationElement(ProcessID process) const override;
    /// The window at the place or, while the user moves one, that one: a window manager may leave
    /// it away from the pointer, as some do with a maximised one that they restore.
    AXResult<AccessibilityElement> elementAtPosition(AXPoint point) const override;
    std::unique_ptr<AccessibilityValue> makeValue(AXPoint position) const override;
    std::unique_ptr<AccessibilityValue> makeValue(AXSize size) const override;

private:
    X11Connection& connection_;
    const X11WindowManagerWatch& windowManager_;
    const X11MovedWindows& movedWindows_;
    const X11Screens& screens_;
    X11Trust& trust_;
    std::shared_ptr<X11ElementContext> context_;
};

} // namespace tilewright
