#include "FakeMacSystem.h"

#include <IOKit/pwr_mgt/IOPMLib.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

namespace tilewright::testing {

namespace {

FakeMacSystem* currentSystem = nullptr;

class ElementObject final : public fakecf::Object {
public:
    explicit ElementObject(std::shared_ptr<MacNode> initial)
        : Object(fakecf::TypeID::axElement, "element " + initial->name)
        , node(std::move(initial)) {}
    bool equals(const Object& other) const override {
        const auto* theirs = dynamic_cast<const ElementObject*>(&other);
        return theirs && theirs->node == node;
    }
    const std::shared_ptr<MacNode> node;
};

class ValueObject final : public fakecf::Object {
public:
    explicit ValueObject(std::variant<AXPoint, AXSize> initial)
        : Object(fakecf::TypeID::axValue,
                 std::holds_alternative<AXPoint>(initial) ? "position value" : "size value")
        , content(initial) {}
    const std::variant<AXPoint, AXSize> content;
};

class UUIDObject final : public fakecf::Object {
public:
    explicit UUIDObject(QString initial)
        : Object(fakecf::TypeID::uuid, "UUID")
        , text(std::move(initial)) {}
    const QString text;
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

std::string textOfValue(CFTypeRef value) {
    if (CFGetTypeID(value) == CFBooleanGetTypeID())
        return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) ? "true" : "false";
    const auto& content = fakecf::as<ValueObject>(value, "AXUIElementSetAttributeValue").content;
    return std::visit([](const auto& v) { return text(v); }, content);
}

MacNode& nodeOf(AXUIElementRef element, const char* caller) {
    return *fakecf::as<ElementObject>(element, caller).node;
}

::AXError toC(AXError error) {
    return static_cast<::AXError>(static_cast<int>(error));
}

/// A new reference to an attribute's value; null for a success without one.
CFTypeRef copyValue(const MacNode::Value& value) {
    if (const auto* string = std::get_if<QString>(&value))
        return fakecf::makeString(*string);
    if (const auto* node = std::get_if<std::shared_ptr<MacNode>>(&value))
        return FakeMacSystem::copyReference(*node);
    if (const auto* boolean = std::get_if<bool>(&value))
        return CFRetain(*boolean ? kCFBooleanTrue : kCFBooleanFalse);
    if (const auto* number = std::get_if<qint64>(&value))
        return fakecf::makeNumber(*number);
    return nullptr;
}

/// Writes a value into a node, as an application does that was asked to.
::AXError change(MacNode& node, const std::string& name, CFTypeRef value) {
    if (CFGetTypeID(value) == CFBooleanGetTypeID()) {
        node.attributes[name] = CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
        return kAXErrorSuccess;
    }
    const auto& content = fakecf::as<ValueObject>(value, "AXUIElementSetAttributeValue").content;
    if (const auto* position = std::get_if<tilewright::AXPoint>(&content);
        position && name == "AXPosition")
        node.position = *position;
    else if (const auto* size = std::get_if<tilewright::AXSize>(&content); size && name == "AXSize")
        node.size = *size;
    else
        return name == "AXPosition" || name == "AXSize" ? kAXErrorIllegalArgument
                                                        : kAXErrorAttributeUnsupported;
    return kAXErrorSuccess;
}

bool fails(const char* function) {
    return fakecf::failing().contains(function);
}

} // namespace

FakeMacSystem::FakeMacSystem() {
    if (currentSystem)
        fakecf::die("there are two systems");
    fakecf::reset();
    currentSystem = this;
}

FakeMacSystem::~FakeMacSystem() {
    for (const std::string& leaked : fakecf::live())
        ADD_FAILURE() << "leaked: " << leaked;
    EXPECT_TRUE(assertions.empty()) << "a power assertion is left";
    currentSystem = nullptr;
    fakecf::reset();
}

FakeMacSystem& FakeMacSystem::current() {
    if (!currentSystem)
        fakecf::die("there is no system");
    return *currentSystem;
}

std::shared_ptr<MacNode> FakeMacSystem::makeWindow(const std::string& name) {
    auto node = makeElement(name);
    node->attributes["AXRole"] = QStringLiteral("AXWindow");
    return node;
}

AXUIElementRef FakeMacSystem::copyReference(const std::shared_ptr<MacNode>& node) {
    return static_cast<AXUIElementRef>(fakecf::adopt(std::make_unique<ElementObject>(node)));
}

} // namespace tilewright::testing

using namespace tilewright::testing;
using TilewrightAXError = tilewright::AXError;

extern "C" {

Boolean AXIsProcessTrusted(void) {
    FakeMacSystem::current().log("AXIsProcessTrusted");
    return FakeMacSystem::current().isTrusted;
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
    auto& system = FakeMacSystem::current();
    system.log("AXIsProcessTrustedWithOptions");
    // Null is allowed here: no options.
    const CFStringRef key = fakecf::makeString(QStringLiteral("AXTrustedCheckOptionPrompt"));
    const void* prompts = options ? CFDictionaryGetValue(options, key) : nullptr;
    CFRelease(key);
    system.prompts.push_back(prompts ? "AXTrustedCheckOptionPrompt=" + textOfValue(prompts)
                                     : "nothing known");
    return system.isTrusted;
}

AXUIElementRef AXUIElementCreateSystemWide(void) {
    auto& system = FakeMacSystem::current();
    system.log("AXUIElementCreateSystemWide");
    return fails("AXUIElementCreateSystemWide") ? nullptr
                                                : FakeMacSystem::copyReference(system.systemWide);
}

AXUIElementRef AXUIElementCreateApplication(pid_t process) {
    auto& system = FakeMacSystem::current();
    system.log("AXUIElementCreateApplication " + std::to_string(process));
    if (fails("AXUIElementCreateApplication"))
        return nullptr;
    const auto found = system.applications.find(process);
    if (found != system.applications.end())
        return FakeMacSystem::copyReference(found->second);
    // One can be made for any process; its reads then fail.
    const auto gone = FakeMacSystem::makeElement("application" + std::to_string(process));
    gone->isGone = true;
    return FakeMacSystem::copyReference(gone);
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                      CFTypeRef* value) {
    const MacNode& node = nodeOf(element, "AXUIElementCopyAttributeValue");
    const std::string name = fakecf::textOf(attribute).toStdString();
    FakeMacSystem::current().log(node.name + ".copy " + name);
    if (!value)
        fakecf::die("AXUIElementCopyAttributeValue was given no place for the value");
    if (const auto failure = FakeMacSystem::current().failureOfThisCall())
        return toC(*failure);
    if (node.isGone)
        return kAXErrorInvalidUIElement;
    if (const auto error = node.readErrors.find(name); error != node.readErrors.end())
        return toC(error->second);
    const auto found = node.attributes.find(name);
    if (found == node.attributes.end())
        return kAXErrorNoValue;
    *value = copyValue(found->second);
    return kAXErrorSuccess;
}

AXError AXUIElementCopyElementAtPosition(AXUIElementRef application, float x, float y,
                                         AXUIElementRef* element) {
    auto& system = FakeMacSystem::current();
    const MacNode& asked = nodeOf(application, "AXUIElementCopyElementAtPosition");
    system.log(asked.name + ".elementAt " + tilewright::testing::text(tilewright::AXPoint{x, y}));
    const auto failure = system.failureOfThisCall();
    if (failure || system.elementAtError) {
        *element = nullptr;
        return toC(failure.value_or(system.elementAtError.value_or(TilewrightAXError::failure)));
    }
    const auto found = system.elementAt ? system.elementAt(tilewright::AXPoint{x, y}) : nullptr;
    *element = found ? FakeMacSystem::copyReference(found) : nullptr;
    return found ? kAXErrorSuccess : kAXErrorNoValue;
}

AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                     CFTypeRef value) {
    MacNode& node = nodeOf(element, "AXUIElementSetAttributeValue");
    const std::string name = fakecf::textOf(attribute).toStdString();
    FakeMacSystem::current().log(node.name + ".set " + name + " " + textOfValue(value));
    if (const auto failure = FakeMacSystem::current().failureOfThisCall()) {
        change(node, name, value);
        return toC(*failure);
    }
    if (node.isGone)
        return kAXErrorInvalidUIElement;
    if (auto& errors = node.writeErrors[name]; !errors.empty()) {
        const TilewrightAXError error = errors.front();
        errors.erase(errors.begin());
        if (error != TilewrightAXError::success)
            return toC(error);
    }
    return change(node, name, value);
}

AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float timeoutInSeconds) {
    const MacNode& node = nodeOf(element, "AXUIElementSetMessagingTimeout");
    std::ostringstream seconds;
    seconds << timeoutInSeconds;
    FakeMacSystem::current().log(node.name + ".timeout " + seconds.str());
    if (const auto failure = FakeMacSystem::current().failureOfThisCall())
        return toC(*failure);
    return kAXErrorSuccess;
}

AXError AXUIElementGetPid(AXUIElementRef element, pid_t* process) {
    const MacNode& node = nodeOf(element, "AXUIElementGetPid");
    FakeMacSystem::current().log(node.name + ".process");
    if (const auto failure = FakeMacSystem::current().failureOfThisCall())
        return toC(*failure);
    if (node.isGone)
        return kAXErrorInvalidUIElement;
    if (!node.process)
        return kAXErrorFailure;
    *process = *node.process;
    return kAXErrorSuccess;
}

CFTypeID AXUIElementGetTypeID(void) {
    return fakecf::TypeID::axElement;
}

AXValueRef AXValueCreate(AXValueType type, const void* value) {
    std::variant<tilewright::AXPoint, tilewright::AXSize> content;
    if (type == kAXValueTypeCGPoint) {
        const auto* point = static_cast<const CGPoint*>(value);
        content = tilewright::AXPoint{point->x, point->y};
    } else if (type == kAXValueTypeCGSize) {
        const auto* size = static_cast<const CGSize*>(value);
        content = tilewright::AXSize{size->width, size->height};
    } else {
        return nullptr;
    }
    FakeMacSystem::current().log(
        "AXValueCreate " +
        std::visit([](const auto& v) { return tilewright::testing::text(v); }, content));
    if (fails(type == kAXValueTypeCGPoint ? "AXValueCreate position" : "AXValueCreate size"))
        return nullptr;
    return static_cast<AXValueRef>(fakecf::adopt(std::make_unique<ValueObject>(content)));
}

CFUUIDRef CGDisplayCreateUUIDFromDisplayID(CGDirectDisplayID display) {
    const auto& known = FakeMacSystem::current().displayUUIDs;
    const auto found = known.find(display);
    if (found == known.end())
        return nullptr;
    return static_cast<CFUUIDRef>(fakecf::adopt(std::make_unique<UUIDObject>(found->second)));
}

CFStringRef CFUUIDCreateString(CFAllocatorRef /*allocator*/, CFUUIDRef uuid) {
    const QString text = fakecf::as<UUIDObject>(uuid, "CFUUIDCreateString").text;
    return fails("CFUUIDCreateString") ? nullptr : fakecf::makeString(text);
}

IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel level, CFStringRef name,
                                     IOPMAssertionID* id) {
    auto& system = FakeMacSystem::current();
    system.createdAssertions.push_back({fakecf::textOf(type), level, fakecf::textOf(name)});
    if (system.assertionStatus != 0)
        return system.assertionStatus;
    *id = ++system.lastAssertion;
    system.assertions.emplace(*id, system.createdAssertions.back());
    system.mostAssertions = std::max(system.mostAssertions, system.assertions.size());
    return kIOReturnSuccess;
}

IOReturn IOPMAssertionRelease(IOPMAssertionID id) {
    auto& system = FakeMacSystem::current();
    system.releasedAssertions.push_back(id);
    // The system's "bad argument".
    return system.assertions.erase(id) == 1 ? kIOReturnSuccess : static_cast<int>(0xe00002c2);
}

} // extern "C"
