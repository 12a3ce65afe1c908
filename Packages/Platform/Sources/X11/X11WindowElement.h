#pragma once

#include "X11ActiveWindow.h"
#include "X11FrameSetter.h"

#include <Platform/Accessibility.h>

namespace tilewright {

/// What elements need of the desktop, while it exists. Elements may outlive it: their calls then
/// answer errors.
struct X11ElementContext {
    X11Connection& connection;
    X11ActiveWindow& activeWindow;
    X11FrameSetter& frameSetter;
};

/// A position or size on its way to an element of this backend.
class X11Value final : public AccessibilityValue {
public:
    explicit X11Value(AXPoint value)
        : position(value) {}
    explicit X11Value(AXSize value)
        : size(value) {}

    const std::optional<AXPoint> position;
    const std::optional<AXSize> size;
};

/// An X window as an accessibility element; a managed client is a window, and stands for whatever
/// is in it.
class X11WindowElement final : public AccessibilityElement::Implementation {
public:
    /// `seenManaged` is the connection's moment at which the server said that the window is
    /// managed; while that lasts nobody asks again.
    X11WindowElement(std::weak_ptr<X11ElementContext> context, xcb_window_t window,
                     std::optional<std::uint64_t> seenManaged = {})
        : context_(std::move(context))
        , window_(window)
        , seenManaged_(seenManaged) {}

    AXResult<QString> string(AXAttribute attribute) const override;
    AXResult<AccessibilityElement> element(AXAttribute attribute) const override;
    AXError setValue(AXAttribute attribute, const AccessibilityValue& value) const override;
    AXError processID(ProcessID& id) const override;
    bool isSameElement(const Implementation& other) const override;

    [[nodiscard]] xcb_window_t window() const { return window_; }

private:
    std::weak_ptr<X11ElementContext> context_;
    xcb_window_t window_;
    std::optional<std::uint64_t> seenManaged_;
};

/// The whole desktop, or one application of it: the way to the focused window.
class X11ApplicationElement final : public AccessibilityElement::Implementation {
public:
    /// Without a process: the whole desktop.
    X11ApplicationElement(std::weak_ptr<X11ElementContext> context,
                          std::optional<ProcessID> process)
        : context_(std::move(context))
        , process_(process) {}

    AXResult<QString> string(AXAttribute attribute) const override;
    AXResult<AccessibilityElement> element(AXAttribute attribute) const override;
    AXError setValue(AXAttribute attribute, const AccessibilityValue& value) const override;
    AXError processID(ProcessID& id) const override;
    bool isSameElement(const Implementation& other) const override;

private:
    std::weak_ptr<X11ElementContext> context_;
    std::optional<ProcessID> process_;
};

} // namespace tilewright
