#pragma once

#include "CFOwner.h"

#include <ApplicationServices/ApplicationServices.h>
#include <Platform/Accessibility.h>

namespace tilewright {

/// An element of the platform's accessibility interface. A null reference stands for an element
/// that could not be made: every call on it answers `invalidUIElement`.
class MacAccessibilityElement final : public AccessibilityElement::Implementation {
public:
    explicit MacAccessibilityElement(CFOwner<AXUIElementRef> element);

    /// The handle that the rest of the program knows.
    [[nodiscard]] static AccessibilityElement make(CFOwner<AXUIElementRef> element);

    [[nodiscard]] AXResult<QString> string(AXAttribute attribute) const override;
    [[nodiscard]] AXResult<AccessibilityElement> element(AXAttribute attribute) const override;
    AXError setValue(AXAttribute attribute, const AccessibilityValue& value) const override;
    /// Pauses the application's enhanced accessibility mode.
    [[nodiscard]] std::shared_ptr<void> beginMove() const override;
    AXError processID(ProcessID& id) const override;
    [[nodiscard]] bool isSameElement(const Implementation& other) const override;

    [[nodiscard]] AXUIElementRef get() const { return element_.get(); }

private:
    [[nodiscard]] AXResult<CFOwner<CFTypeRef>> copyAttribute(AXAttribute attribute) const;

    CFOwner<AXUIElementRef> element_;
};

/// A position or size of the platform's accessibility interface. Never null.
class MacAccessibilityValue final : public AccessibilityValue {
public:
    explicit MacAccessibilityValue(CFOwner<AXValueRef> value)
        : value_(std::move(value)) {}

    [[nodiscard]] AXValueRef get() const { return value_.get(); }

private:
    CFOwner<AXValueRef> value_;
};

} // namespace tilewright
