#include "Accessibility.h"

namespace tilewright {

AccessibilityValue::~AccessibilityValue() = default;
AccessibilityElement::Implementation::~Implementation() = default;
std::shared_ptr<void> AccessibilityElement::Implementation::beginMove() const {
    return nullptr;
}
Accessibility::~Accessibility() = default;

} // namespace tilewright
