#include "Accessibility.h"

namespace tilewright {

AccessibilityValue::~AccessibilityValue() = default;
AccessibilityElement::Implementation::~Implementation() = default;
Accessibility::~Accessibility() = default;

} // namespace tilewright
