#include "MacAccessibilityElement.h"

#include "CFText.h"
#include "EnhancedInterfacePause.h"

#include <unistd.h>

namespace tilewright {

namespace {

AXError fromPlatform(::AXError error) {
    // The enumerations share their numbers.
    return static_cast<AXError>(static_cast<int>(error));
}

/// Whether an element is one of this program's.
bool isOwn(AXUIElementRef element) {
    pid_t process = 0;
    return AXUIElementGetPid(element, &process) == kAXErrorSuccess && process == getpid();
}

} // namespace

MacAccessibilityElement::MacAccessibilityElement(CFOwner<AXUIElementRef> element)
    : element_(std::move(element)) {}

AccessibilityElement MacAccessibilityElement::make(CFOwner<AXUIElementRef> element) {
    return AccessibilityElement(std::make_shared<MacAccessibilityElement>(std::move(element)));
}

AXResult<CFOwner<CFTypeRef>> MacAccessibilityElement::copyAttribute(AXAttribute attribute) const {
    const auto name = makeCFString(QString::fromLatin1(nameOf(attribute)));
    if (!element_ || !name)
        return {AXError::invalidUIElement, {}};
    CFTypeRef copied = nullptr;
    const AXError error =
        fromPlatform(AXUIElementCopyAttributeValue(element_.get(), name.get(), &copied));
    auto value = CFOwner<CFTypeRef>::adopt(copied);
    if (error != AXError::success)
        return {error, {}};
    if (!value)
        return {AXError::noValue, {}};
    return {AXError::success, std::move(value)};
}

AXResult<QString> MacAccessibilityElement::string(AXAttribute attribute) const {
    const auto copied = copyAttribute(attribute);
    if (!copied.value)
        return {copied.error, {}};
    const auto text = textOf(copied.value->get());
    if (!text)
        return {AXError::noValue, {}};
    return {AXError::success, text};
}

AXResult<AccessibilityElement> MacAccessibilityElement::element(AXAttribute attribute) const {
    const auto copied = copyAttribute(attribute);
    if (!copied.value)
        return {copied.error, {}};
    if (CFGetTypeID(copied.value->get()) != AXUIElementGetTypeID())
        return {AXError::noValue, {}};
    const auto element = static_cast<AXUIElementRef>(copied.value->get());
    // While the panel has the focus, the user still means the window behind it.
    if (attribute == AXAttribute::focusedUIElement && isOwn(element))
        return {AXError::noValue, {}};
    return {AXError::success, make(CFOwner<AXUIElementRef>::retain(element))};
}

AXError MacAccessibilityElement::setValue(AXAttribute attribute,
                                          const AccessibilityValue& value) const {
    const auto name = makeCFString(QString::fromLatin1(nameOf(attribute)));
    const auto* ours = dynamic_cast<const MacAccessibilityValue*>(&value);
    if (!element_ || !name)
        return AXError::invalidUIElement;
    if (!ours)
        return AXError::illegalArgument;
    return fromPlatform(AXUIElementSetAttributeValue(element_.get(), name.get(), ours->get()));
}

std::shared_ptr<void> MacAccessibilityElement::beginMove() const {
    return element_ ? std::make_shared<EnhancedInterfacePause>(element_.get()) : nullptr;
}

AXError MacAccessibilityElement::processID(ProcessID& id) const {
    if (!element_)
        return AXError::invalidUIElement;
    pid_t process = 0;
    const AXError error = fromPlatform(AXUIElementGetPid(element_.get(), &process));
    if (error == AXError::success)
        id = process;
    return error;
}

bool MacAccessibilityElement::isSameElement(const Implementation& other) const {
    const auto* theirs = dynamic_cast<const MacAccessibilityElement*>(&other);
    return theirs && element_ && theirs->element_ && CFEqual(element_.get(), theirs->get());
}

} // namespace tilewright
