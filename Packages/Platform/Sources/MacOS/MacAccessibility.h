#pragma once

#include "CFOwner.h"

#include <ApplicationServices/ApplicationServices.h>
#include <Platform/Accessibility.h>

namespace tilewright {

/// The accessibility interface of macOS. Calls block for as long as the application asked takes to
/// answer, as the platform does. Main thread only.
class MacAccessibility final : public Accessibility {
public:
    MacAccessibility();

    [[nodiscard]] bool isTrusted() const override;
    bool requestTrust() override;
    [[nodiscard]] AccessibilityElement systemWideElement() const override;
    [[nodiscard]] AccessibilityElement applicationElement(ProcessID process) const override;
    [[nodiscard]] AXResult<AccessibilityElement> elementAtPosition(AXPoint point) const override;
    [[nodiscard]] std::unique_ptr<AccessibilityValue> makeValue(AXPoint position) const override;
    [[nodiscard]] std::unique_ptr<AccessibilityValue> makeValue(AXSize size) const override;
};

} // namespace tilewright
