#include "FakeAccessibility.h"

#include <sstream>
#include <variant>

namespace tilewright::testing {

namespace {

class FakeValue final : public AccessibilityValue {
public:
    FakeValue(std::variant<AXPoint, AXSize> newContent, int& liveValues)
        : content(newContent)
        , liveValues_(liveValues) {
        ++liveValues_;
    }
    ~FakeValue() override { --liveValues_; }

    const std::variant<AXPoint, AXSize> content;

private:
    int& liveValues_;
};

std::string text(AXPoint point) {
    std::ostringstream out;
    out << point.x << "," << point.y;
    return out.str();
}

std::string text(AXSize size) {
    std::ostringstream out;
    out << size.width << "x" << size.height;
    return out.str();
}

} // namespace

AXResult<QString> FakeElement::string(AXAttribute attribute) const {
    owner_.log(name + ".string " + nameOf(attribute));
    if (isGone)
        return {AXError::invalidUIElement, {}};
    const auto found = strings.find(attribute);
    if (found == strings.end())
        return {AXError::noValue, {}};
    return {AXError::success, found->second};
}

AXResult<AccessibilityElement> FakeElement::element(AXAttribute attribute) const {
    owner_.log(name + ".element " + nameOf(attribute));
    if (isGone)
        return {AXError::invalidUIElement, {}};
    const auto found = elements.find(attribute);
    if (found == elements.end() || !found->second)
        return {AXError::noValue, {}};
    return {AXError::success, found->second->handle()};
}

AXError FakeElement::setValue(AXAttribute attribute, const AccessibilityValue& value) const {
    const auto& content = dynamic_cast<const FakeValue&>(value).content;
    owner_.log(name + ".set " + nameOf(attribute) + " " +
               std::visit([](const auto& v) { return text(v); }, content));
    if (isGone)
        return AXError::invalidUIElement;
    auto& errors = writeErrors[attribute];
    if (!errors.empty()) {
        const AXError error = errors.front();
        errors.erase(errors.begin());
        if (error != AXError::success)
            return error;
    }
    if (const auto* newPosition = std::get_if<AXPoint>(&content))
        position = *newPosition;
    else
        size = std::get<AXSize>(content);
    return AXError::success;
}

AXError FakeElement::processID(ProcessID& id) const {
    owner_.log(name + ".processID");
    if (isGone)
        return AXError::invalidUIElement;
    if (!process)
        return AXError::failure;
    id = *process;
    return AXError::success;
}

FakeAccessibility::FakeAccessibility()
    : systemWide(makeElement("systemWide")) {}

AccessibilityElement FakeAccessibility::applicationElement(ProcessID process) const {
    log("applicationElement " + std::to_string(process));
    const auto found = applications.find(process);
    if (found != applications.end())
        return found->second->handle();
    // As on a real desktop, an element can be made for any process; its reads then fail.
    auto& self = const_cast<FakeAccessibility&>(*this); // NOLINT: elements log through their owner
    auto element = std::make_shared<FakeElement>(self, "application" + std::to_string(process));
    element->isGone = true;
    return element->handle();
}

AXResult<AccessibilityElement> FakeAccessibility::elementAtPosition(AXPoint point) const {
    log("elementAtPosition " + text(point));
    const auto found = elementAt ? elementAt(point) : nullptr;
    if (!found)
        return {AXError::noValue, {}};
    return {AXError::success, found->handle()};
}

std::unique_ptr<AccessibilityValue> FakeAccessibility::makeValue(AXPoint position) const {
    log("makeValue " + text(position));
    if (positionValuesFail)
        return nullptr;
    return std::make_unique<FakeValue>(position, liveValues);
}

std::unique_ptr<AccessibilityValue> FakeAccessibility::makeValue(AXSize size) const {
    log("makeValue " + text(size));
    if (sizeValuesFail)
        return nullptr;
    return std::make_unique<FakeValue>(size, liveValues);
}

std::shared_ptr<FakeElement> FakeAccessibility::makeWindow(const std::string& name) {
    auto element = makeElement(name);
    element->strings[AXAttribute::role] = QString::fromLatin1(axWindowRole);
    return element;
}

} // namespace tilewright::testing
