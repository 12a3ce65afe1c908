#pragma once

#include "Geometry.h"

#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <utility>

namespace tilewright {

/// What a call on an accessibility element came to, with the numeric values of the platform's
/// accessibility interface.
enum class AXError : int {
    success = 0,
    failure = -25200,
    illegalArgument = -25201,
    invalidUIElement = -25202,
    invalidUIElementObserver = -25203,
    cannotComplete = -25204,
    attributeUnsupported = -25205,
    actionUnsupported = -25206,
    notificationUnsupported = -25207,
    notImplemented = -25208,
    notificationAlreadyRegistered = -25209,
    notificationNotRegistered = -25210,
    apiDisabled = -25211,
    noValue = -25212,
    parameterizedAttributeUnsupported = -25213,
    notEnoughPrecision = -25214,
};

/// The attributes that this program reads and writes.
enum class AXAttribute {
    focusedUIElement,
    focusedWindow,
    window,
    parent,
    role,
    subrole,
    position,
    size
};

/// The name under which the platform's accessibility interface knows an attribute.
[[nodiscard]] constexpr const char* nameOf(AXAttribute attribute) {
    switch (attribute) {
    case AXAttribute::focusedUIElement:
        return "AXFocusedUIElement";
    case AXAttribute::focusedWindow:
        return "AXFocusedWindow";
    case AXAttribute::window:
        return "AXWindow";
    case AXAttribute::parent:
        return "AXParent";
    case AXAttribute::role:
        return "AXRole";
    case AXAttribute::subrole:
        return "AXSubrole";
    case AXAttribute::position:
        return "AXPosition";
    case AXAttribute::size:
        return "AXSize";
    }
    return "";
}

/// The role of an element that is a window.
inline constexpr const char* axWindowRole = "AXWindow";

/// A process, as the operating system numbers it.
using ProcessID = qint64;

/// The answer of an attribute read: the value is set exactly when the error is `success` and the
/// attribute had a value of the type asked for.
template<class T>
struct AXResult {
    AXError error = AXError::failure;
    std::optional<T> value;
};

/// A position or size in the form in which elements take it. Opaque: made by `Accessibility`,
/// handed back to the elements of the same backend.
class AccessibilityValue {
public:
    AccessibilityValue() = default;
    AccessibilityValue(const AccessibilityValue&) = delete;
    AccessibilityValue& operator=(const AccessibilityValue&) = delete;
    virtual ~AccessibilityValue();
};

/// A user-interface element of some application: a window or something in one. A cheap value:
/// copies stand for the same element. The element behind it may vanish at any moment; every call
/// then answers an error. Calls are synchronous; main thread only.
class AccessibilityElement {
public:
    /// What a backend implements for its kind of element.
    class Implementation {
    public:
        Implementation() = default;
        Implementation(const Implementation&) = delete;
        Implementation& operator=(const Implementation&) = delete;
        virtual ~Implementation();

        [[nodiscard]] virtual AXResult<QString> string(AXAttribute attribute) const = 0;
        [[nodiscard]] virtual AXResult<AccessibilityElement>
        element(AXAttribute attribute) const = 0;
        virtual AXError setValue(AXAttribute attribute, const AccessibilityValue& value) const = 0;
        /// See `beginMove`. Null where a desktop moves windows as it is told without it.
        [[nodiscard]] virtual std::shared_ptr<void> beginMove() const;
        virtual AXError processID(ProcessID& id) const = 0;
        [[nodiscard]] virtual bool isSameElement(const Implementation& other) const = 0;
    };

    explicit AccessibilityElement(std::shared_ptr<const Implementation> implementation)
        : implementation_(std::move(implementation)) {}

    /// Reads an attribute that holds a text.
    [[nodiscard]] AXResult<QString> string(AXAttribute attribute) const {
        return implementation_->string(attribute);
    }
    /// Reads an attribute that holds another element.
    [[nodiscard]] AXResult<AccessibilityElement> element(AXAttribute attribute) const {
        return implementation_->element(attribute);
    }
    /// Writes an attribute: `AXAttribute::position` or `AXAttribute::size`, in Accessibility screen
    /// space, in terms of what the user sees of the window, its decorations included.
    AXError setValue(AXAttribute attribute, const AccessibilityValue& value) const {
        return implementation_->setValue(attribute, value);
    }
    /// To be held around the writes that together move a window: until it is let go, the
    /// application does exactly what they say, at once. Null where that takes nothing, or cannot be
    /// had; the writes are made all the same.
    [[nodiscard]] std::shared_ptr<void> beginMove() const { return implementation_->beginMove(); }
    /// Reads the process that the element belongs to into `id`, which keeps its value on an error.
    AXError processID(ProcessID& id) const { return implementation_->processID(id); }

    /// For backends: what stands behind the element.
    [[nodiscard]] const Implementation& implementation() const { return *implementation_; }

    friend bool operator==(const AccessibilityElement& a, const AccessibilityElement& b) {
        return a.implementation_ == b.implementation_ ||
               a.implementation_->isSameElement(*b.implementation_);
    }

private:
    std::shared_ptr<const Implementation> implementation_;
};

/// The way to other applications' windows. Main thread only.
class Accessibility : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~Accessibility() override;

    /// Whether this process may move other applications' windows and watch their input now. Never
    /// prompts.
    [[nodiscard]] virtual bool isTrusted() const = 0;
    /// Like `isTrusted()`, and where the answer is no, tells the user, by the desktop's own means,
    /// what is missing.
    virtual bool requestTrust() = 0;

    /// The element through which the focused element of the whole desktop is read.
    [[nodiscard]] virtual AccessibilityElement systemWideElement() const = 0;
    /// The element that stands for a running application.
    [[nodiscard]] virtual AccessibilityElement applicationElement(ProcessID process) const = 0;
    /// The element at a point of Accessibility screen space, asked of the system-wide element.
    [[nodiscard]] virtual AXResult<AccessibilityElement> elementAtPosition(AXPoint point) const = 0;

    /// A position for `AccessibilityElement::setValue`; null when it cannot be made.
    [[nodiscard]] virtual std::unique_ptr<AccessibilityValue> makeValue(AXPoint position) const = 0;
    /// A size for `AccessibilityElement::setValue`; null when it cannot be made.
    [[nodiscard]] virtual std::unique_ptr<AccessibilityValue> makeValue(AXSize size) const = 0;

Q_SIGNALS:
    /// `isTrusted()` has another answer than before, as far as the desktop tells of it.
    void trustChanged();
};

} // namespace tilewright
