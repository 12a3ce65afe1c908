#include "MacAccessibility.h"

#include "AppKitNotifications.h"
#include "CFText.h"
#include "MacAccessibilityElement.h"

#include <array>
#include <iterator>
#include <utility>

namespace tilewright {

namespace {

/// The system announces a change of the permission a moment before it answers by it.
constexpr std::array looks{std::chrono::milliseconds{250}, std::chrono::milliseconds{1000},
                           std::chrono::milliseconds{4000}};

} // namespace

MacAccessibility::MacAccessibility(MainLoop& loop)
    : loop_(loop)
    , wasTrusted_(AXIsProcessTrusted() != 0)
    , observation_(appkit::observe(appkit::Notification::accessibilityPermissionChanged,
                                   [this] { lookForPermission(0); })) {}

MacAccessibility::~MacAccessibility() = default;

void MacAccessibility::lookForPermission(std::size_t look) {
    nextLook_ = ScopedTimer(loop_.scheduleOnce(looks.at(look), [this, look] {
        const bool trusted = isTrusted();
        if (std::exchange(wasTrusted_, trusted) != trusted)
            Q_EMIT trustChanged();
        else if (look + 1 < looks.size())
            lookForPermission(look + 1);
    }));
}

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
