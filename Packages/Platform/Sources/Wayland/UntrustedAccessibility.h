#pragma once

#include <Platform/Accessibility.h>

#include <functional>

namespace tilewright {

/// The accessibility interface of a desktop that lets nobody move windows: never trusted, and every
/// element answers that the interface is disabled. Main thread only.
class UntrustedAccessibility final : public Accessibility {
    Q_OBJECT

public:
    /// `tell` says to the user what is missing; called for each request.
    explicit UntrustedAccessibility(std::function<void()> tell);

    [[nodiscard]] bool isTrusted() const override { return false; }
    bool requestTrust() override;
    [[nodiscard]] AccessibilityElement systemWideElement() const override;
    [[nodiscard]] AccessibilityElement applicationElement(ProcessID process) const override;
    [[nodiscard]] AXResult<AccessibilityElement> elementAtPosition(AXPoint point) const override;
    [[nodiscard]] std::unique_ptr<AccessibilityValue> makeValue(AXPoint position) const override;
    [[nodiscard]] std::unique_ptr<AccessibilityValue> makeValue(AXSize size) const override;

private:
    std::function<void()> tell_;
};

} // namespace tilewright
