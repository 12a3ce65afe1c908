#pragma once

#include <Platform/Accessibility.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tilewright::testing {

class FakeAccessibility;

/// The elements that a test builds its windows from. Attributes that are not set answer `noValue`.
class FakeElement final : public AccessibilityElement::Implementation,
                          public std::enable_shared_from_this<FakeElement> {
public:
    FakeElement(FakeAccessibility& owner, std::string elementName)
        : name(std::move(elementName))
        , owner_(owner) {}

    AXResult<QString> string(AXAttribute attribute) const override;
    AXResult<AccessibilityElement> element(AXAttribute attribute) const override;
    AXError setValue(AXAttribute attribute, const AccessibilityValue& value) const override;
    AXError processID(ProcessID& id) const override;
    bool isSameElement(const Implementation& other) const override { return this == &other; }

    /// What the call log calls this element.
    const std::string name;
    std::map<AXAttribute, QString> strings;
    std::map<AXAttribute, std::shared_ptr<FakeElement>> elements;
    std::optional<ProcessID> process;
    /// Errors that the next writes of an attribute answer, in order; success once used up.
    mutable std::map<AXAttribute, std::vector<AXError>> writeErrors;
    /// The frame as the writes left it.
    mutable AXPoint position;
    mutable AXSize size;
    /// Every call on the element answers `invalidUIElement`.
    mutable bool isGone = false;

    /// A handle for the code under test.
    [[nodiscard]] AccessibilityElement handle() { return AccessibilityElement(shared_from_this()); }

private:
    FakeAccessibility& owner_;
};

/// An accessibility interface over elements that a test builds; records every call in order.
class FakeAccessibility final : public Accessibility {
    Q_OBJECT

public:
    FakeAccessibility();

    bool isTrusted() const override {
        log("isTrusted");
        return trusted;
    }
    bool requestTrust() override {
        log("requestTrust");
        ++trustRequests;
        if (whenTrustIsRequested)
            whenTrustIsRequested();
        return trusted;
    }
    AccessibilityElement systemWideElement() const override {
        log("systemWideElement");
        return systemWide->handle();
    }
    AccessibilityElement applicationElement(ProcessID process) const override;
    AXResult<AccessibilityElement> elementAtPosition(AXPoint point) const override;
    std::unique_ptr<AccessibilityValue> makeValue(AXPoint position) const override;
    std::unique_ptr<AccessibilityValue> makeValue(AXSize size) const override;

    /// A new element, reachable only where the test puts it.
    std::shared_ptr<FakeElement> makeElement(const std::string& name) {
        return std::make_shared<FakeElement>(*this, name);
    }
    /// A new element with the role of a window.
    std::shared_ptr<FakeElement> makeWindow(const std::string& name);

    /// As a desktop that grants the permission, or takes it away.
    void changeTrust(bool isTrustedNow) {
        trusted = isTrustedNow;
        Q_EMIT trustChanged();
    }

    void log(const std::string& call) const {
        if (recordsCalls)
            calls.push_back(call);
    }

    bool trusted = true;
    int trustRequests = 0;
    /// Called within each such request.
    std::function<void()> whenTrustIsRequested;
    bool positionValuesFail = false;
    bool sizeValuesFail = false;
    std::shared_ptr<FakeElement> systemWide;
    std::map<ProcessID, std::shared_ptr<FakeElement>> applications;
    /// What lies at a point; null where nothing does.
    std::function<std::shared_ptr<FakeElement>(AXPoint)> elementAt;
    /// Every call in order, such as "window.set AXSize 720x875". Values that live are counted.
    mutable std::vector<std::string> calls;
    bool recordsCalls = true;
    mutable int liveValues = 0;
};

} // namespace tilewright::testing
