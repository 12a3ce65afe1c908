#include "UntrustedAccessibility.h"

namespace tilewright {

namespace {

class DisabledElement final : public AccessibilityElement::Implementation {
public:
    [[nodiscard]] AXResult<QString> string(AXAttribute) const override {
        return {AXError::apiDisabled, {}};
    }
    [[nodiscard]] AXResult<AccessibilityElement> element(AXAttribute) const override {
        return {AXError::apiDisabled, {}};
    }
    AXError setValue(AXAttribute, const AccessibilityValue&) const override {
        return AXError::apiDisabled;
    }
    AXError processID(ProcessID&) const override { return AXError::apiDisabled; }
    [[nodiscard]] bool isSameElement(const Implementation&) const override { return false; }
};

class NoValue final : public AccessibilityValue {};

} // namespace

UntrustedAccessibility::UntrustedAccessibility(std::function<void()> tell)
    : tell_(std::move(tell)) {}

bool UntrustedAccessibility::requestTrust() {
    tell_();
    return false;
}

AccessibilityElement UntrustedAccessibility::systemWideElement() const {
    return AccessibilityElement(std::make_shared<DisabledElement>());
}

AccessibilityElement UntrustedAccessibility::applicationElement(ProcessID) const {
    return AccessibilityElement(std::make_shared<DisabledElement>());
}

AXResult<AccessibilityElement> UntrustedAccessibility::elementAtPosition(AXPoint) const {
    return {AXError::apiDisabled, {}};
}

std::unique_ptr<AccessibilityValue> UntrustedAccessibility::makeValue(AXPoint) const {
    return std::make_unique<NoValue>();
}

std::unique_ptr<AccessibilityValue> UntrustedAccessibility::makeValue(AXSize) const {
    return std::make_unique<NoValue>();
}

} // namespace tilewright
