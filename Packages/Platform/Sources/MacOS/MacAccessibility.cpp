#include "MacAccessibility.h"

#include "CFText.h"
#include "MacAccessibilityElement.h"

#include <iterator>

namespace tilewright {

MacAccessibility::MacAccessibility() = default;

bool MacAccessibility::isTrusted() const {
    return AXIsProcessTrusted() != 0;
}

bool MacAccessibility::requestTrust() {
    // The option by its name rather than by the exported constant, which is not imported safely
    // into every language; both are the same text.
    const auto option = makeCFString(QStringLiteral("AXTrustedCheckOptionPrompt"));
    if (!option)
        return isTrusted();
    const void* keys[] = {option.get()};
    const void* values[] = {kCFBooleanTrue};
    const auto options = CFOwner<CFDictionaryRef>::adopt(
        CFDictionaryCreate(kCFAllocatorDefault, keys, values, std::size(keys),
                           &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    return AXIsProcessTrustedWithOptions(options.get()) != 0;
}

AccessibilityElement MacAccessibility::systemWideElement() const {
    return MacAccessibilityElement::make(
        CFOwner<AXUIElementRef>::adopt(AXUIElementCreateSystemWide()));
}

AccessibilityElement MacAccessibility::applicationElement(ProcessID process) const {
    return MacAccessibilityElement::make(
        CFOwner<AXUIElementRef>::adopt(AXUIElementCreateApplication(static_cast<pid_t>(process))));
}

AXResult<AccessibilityElement> MacAccessibility::elementAtPosition(AXPoint point) const {
    const auto systemWide = CFOwner<AXUIElementRef>::adopt(AXUIElementCreateSystemWide());
    if (!systemWide)
        return {AXError::failure, {}};
    AXUIElementRef copied = nullptr;
    const auto error = static_cast<AXError>(static_cast<int>(AXUIElementCopyElementAtPosition(
        systemWide.get(), static_cast<float>(point.x), static_cast<float>(point.y), &copied)));
    auto element = CFOwner<AXUIElementRef>::adopt(copied);
    if (error != AXError::success)
        return {error, {}};
    if (!element)
        return {AXError::noValue, {}};
    return {AXError::success, MacAccessibilityElement::make(std::move(element))};
}

std::unique_ptr<AccessibilityValue> MacAccessibility::makeValue(AXPoint position) const {
    const CGPoint point = CGPointMake(position.x, position.y);
    auto value = CFOwner<AXValueRef>::adopt(AXValueCreate(kAXValueTypeCGPoint, &point));
    return value ? std::make_unique<MacAccessibilityValue>(std::move(value)) : nullptr;
}

std::unique_ptr<AccessibilityValue> MacAccessibility::makeValue(AXSize size) const {
    const CGSize extent = CGSizeMake(size.width, size.height);
    auto value = CFOwner<AXValueRef>::adopt(AXValueCreate(kAXValueTypeCGSize, &extent));
    return value ? std::make_unique<MacAccessibilityValue>(std::move(value)) : nullptr;
}

} // namespace tilewright
