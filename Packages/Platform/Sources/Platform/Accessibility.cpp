#include "Accessibility.h"

namespace tilewright {

AccessibilityValue::~AccessibilityValue() = default;
AccessibilityElement::Implementation::~Implementation() = default;

} // namespace tilewright
