#pragma once

#include "FakeCoreFoundation.h"

#include <Platform/Accessibility.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace tilewright::testing {

/// A user-interface element that a test builds; attributes that are not set answer `noValue`.
struct MacNode {
    /// An attribute's value. `std::monostate` is a success without a value.
    using Value = std::variant<std::monostate, QString, std::shared_ptr<MacNode>, bool, qint64>;

    explicit MacNode(std::string initial)
        : name(std::move(initial)) {}

    const std::string name;
    std::map<std::string, Value> attributes;
    std::optional<pid_t> process;
    /// Every call on the element answers `invalidUIElement`.
    bool isGone = false;
    std::map<std::string, AXError> readErrors;
    /// Errors that the next writes of an attribute answer, in order; success once used up.
    std::map<std::string, std::vector<AXError>> writeErrors;
    AXPoint position;
    AXSize size;
};

/// Stands in for the plain C interfaces of the system: accessibility, power assertions, displays.
/// One at a time; reached by the C functions. Its end fails the running test when a reference, or a
/// power assertion, is left.
class FakeMacSystem {
public:
    FakeMacSystem();
    FakeMacSystem(const FakeMacSystem&) = delete;
    FakeMacSystem& operator=(const FakeMacSystem&) = delete;
    ~FakeMacSystem();

    [[nodiscard]] static FakeMacSystem& current();

    [[nodiscard]] static std::shared_ptr<MacNode> makeElement(const std::string& name) {
        return std::make_shared<MacNode>(name);
    }
    [[nodiscard]] static std::shared_ptr<MacNode> makeWindow(const std::string& name);
    /// A reference to the node, which the caller owns.
    [[nodiscard]] static AXUIElementRef copyReference(const std::shared_ptr<MacNode>& node);

    void log(const std::string& call) { calls.push_back(call); }

    /// The calls of the accessibility interface in order, such as "window.copy AXRole".
    std::vector<std::string> calls;

    /// What the call with that number, counted from 0 among those that answer with an error,
    /// answers instead of what it would. A change that it was to make is made all the same: the
    /// other side may have heard of it and not have answered in time.
    std::optional<std::pair<int, AXError>> failure;
    /// Counts a call that answers with an error; the error where it is the one to fail.
    [[nodiscard]] std::optional<AXError> failureOfThisCall() {
        const int call = fallibleCalls++;
        return failure && failure->first == call ? std::optional(failure->second) : std::nullopt;
    }
    int fallibleCalls = 0;

    bool isTrusted = true;
    /// The options that came with each question for trust, such as
    /// "AXTrustedCheckOptionPrompt=true".
    std::vector<std::string> prompts;
    std::shared_ptr<MacNode> systemWide = makeElement("systemWide");
    std::map<pid_t, std::shared_ptr<MacNode>> applications;
    /// What lies at a point; null where nothing does.
    std::function<std::shared_ptr<MacNode>(AXPoint)> elementAt;
    /// What asking for the element at a point answers instead.
    std::optional<AXError> elementAtError;

    /// The displays by their number, and the UUIDs of those that have one.
    std::map<quint32, QString> displayUUIDs;

    struct Assertion {
        QString type;
        quint32 level;
        QString name;
    };
    /// What creating an assertion answers; 0 grants.
    int assertionStatus = 0;
    quint32 lastAssertion = 0;
    std::map<quint32, Assertion> assertions;
    std::vector<Assertion> createdAssertions;
    std::vector<quint32> releasedAssertions;
    std::size_t mostAssertions = 0;
};

} // namespace tilewright::testing
