#include "MacTestPlatform.h"

#include <gtest/gtest.h>

namespace tilewright::testing {

using namespace Qt::StringLiterals;

namespace {

class MacAccessibilityElements : public ::testing::Test {
protected:
    MacAccessibilityElements() {
        system.applications[7] = application;
        window->process = 7;
        system.elementAt = [this](AXPoint) { return window; };
    }

    [[nodiscard]] AccessibilityElement handle() const {
        return *accessibility.elementAtPosition({}).value;
    }
    [[nodiscard]] AXError moveWindow() {
        const auto element = handle();
        const auto value = accessibility.makeValue(AXPoint{10, 20});
        system.calls.clear();
        return element.setValue(AXAttribute::position, *value);
    }
    [[nodiscard]] bool isEnhanced() const {
        return std::get<bool>(application->attributes.at("AXEnhancedUserInterface"));
    }

    FakeMacSystem system;
    FakeAppKit appKit;
    FakeMainLoop loop;
    MacAccessibility accessibility{loop};
    const std::shared_ptr<MacNode> application = FakeMacSystem::makeElement("application");
    const std::shared_ptr<MacNode> window = FakeMacSystem::makeWindow("window");
};

using Calls = std::vector<std::string>;

} // namespace

TEST_F(MacAccessibilityElements, AreEqualWhenTheyStandForTheSameElement) {
    const auto element = handle();
    EXPECT_EQ(element, handle());
    EXPECT_NE(element, accessibility.applicationElement(7));
    EXPECT_EQ(accessibility.systemWideElement(), accessibility.systemWideElement());
}

TEST_F(MacAccessibilityElements, AnswerErrorsWhenTheyCouldNotBeMade) {
    fakecf::failing().insert("AXUIElementCreateApplication");
    const auto none = accessibility.applicationElement(7);
    ProcessID process = 5;
    EXPECT_EQ(none.processID(process), AXError::invalidUIElement);
    EXPECT_EQ(process, 5);
    EXPECT_EQ(none.string(AXAttribute::role).error, AXError::invalidUIElement);
    EXPECT_EQ(none.element(AXAttribute::focusedWindow).error, AXError::invalidUIElement);
    EXPECT_EQ(none.setValue(AXAttribute::size, *accessibility.makeValue(AXSize{1, 2})),
              AXError::invalidUIElement);
    EXPECT_NE(none, handle());
}

TEST_F(MacAccessibilityElements, GiveNoValueOfAnotherTypeThanAskedFor) {
    window->attributes["AXParent"] = u"a text"_s;
    const auto element = handle();
    EXPECT_EQ(element.element(AXAttribute::parent).value, std::nullopt);
    EXPECT_EQ(element.string(AXAttribute::parent).value, u"a text"_s);
    window->attributes["AXParent"] = application;
    EXPECT_EQ(element.string(AXAttribute::parent).value, std::nullopt);
    EXPECT_EQ(element.element(AXAttribute::parent).value, accessibility.applicationElement(7));
    window->attributes["AXParent"] = std::monostate();
    EXPECT_EQ(element.element(AXAttribute::parent).error, AXError::noValue);
}

TEST_F(MacAccessibilityElements, KeepEveryErrorOfTheSystem) {
    const auto element = handle();
    for (int number = -25214; number <= -25200; ++number) {
        window->readErrors["AXRole"] = static_cast<AXError>(number);
        EXPECT_EQ(element.string(AXAttribute::role).error, static_cast<AXError>(number));
    }
}

TEST_F(MacAccessibilityElements, RefuseAValueOfAnotherBackend) {
    class Foreign final : public AccessibilityValue {};
    EXPECT_EQ(handle().setValue(AXAttribute::size, Foreign()), AXError::illegalArgument);
}

TEST_F(MacAccessibilityElements, WithoutMemoryForANameAnswerAnError) {
    const auto element = handle();
    const auto value = accessibility.makeValue(AXSize{1, 2});
    fakecf::failing().insert("CFStringCreateWithCharacters");
    EXPECT_EQ(element.string(AXAttribute::role).error, AXError::invalidUIElement);
    EXPECT_EQ(element.setValue(AXAttribute::size, *value), AXError::invalidUIElement);
    EXPECT_TRUE(accessibility.requestTrust());
    EXPECT_TRUE(system.prompts.empty());
}

TEST_F(MacAccessibilityElements, ArePromptedForByNameWhateverIsMissing) {
    system.isTrusted = false;
    EXPECT_FALSE(accessibility.requestTrust());
    EXPECT_EQ(system.prompts, Calls{"AXTrustedCheckOptionPrompt=true"});
}

TEST_F(MacAccessibilityElements, HaveTheEnhancedModeOfTheirApplicationOffOnceForAllWritesOfAMove) {
    application->attributes["AXEnhancedUserInterface"] = true;
    const auto element = handle();
    const auto value = accessibility.makeValue(AXPoint{10, 20});
    system.calls.clear();
    {
        const auto move = element.beginMove();
        EXPECT_FALSE(isEnhanced());
        EXPECT_EQ(element.setValue(AXAttribute::position, *value), AXError::success);
        EXPECT_EQ(element.setValue(AXAttribute::position, *value), AXError::success);
    }
    EXPECT_EQ(
        system.calls,
        (Calls{"window.process", "AXUIElementCreateApplication 7", "application.timeout 1",
               "application.copy AXEnhancedUserInterface",
               "application.set AXEnhancedUserInterface false", "window.set AXPosition 10,20",
               "window.set AXPosition 10,20", "application.set AXEnhancedUserInterface true"}));
    EXPECT_TRUE(isEnhanced());
}

TEST_F(MacAccessibilityElements, HaveTheEnhancedModeBackAlsoWhereSwitchingItOffTimedOut) {
    application->attributes["AXEnhancedUserInterface"] = true;
    const auto element = handle();
    // The application hears of it, and answers too late.
    system.calls.clear();
    system.fallibleCalls = 0;
    system.failure = {3, AXError::cannotComplete};
    {
        const auto move = element.beginMove();
        ASSERT_EQ(system.calls.back(), "application.set AXEnhancedUserInterface false");
        EXPECT_FALSE(isEnhanced());
    }
    EXPECT_TRUE(isEnhanced());
}

TEST_F(MacAccessibilityElements, OfAnApplicationInItsOrdinaryModeAreLeftInIt) {
    for (const MacNode::Value& mode :
         {MacNode::Value(false), MacNode::Value(u"yes"_s), MacNode::Value(std::monostate())}) {
        application->attributes["AXEnhancedUserInterface"] = mode;
        const auto element = handle();
        system.calls.clear();
        const auto move = element.beginMove();
        EXPECT_EQ(system.calls.back(), "application.copy AXEnhancedUserInterface");
        EXPECT_EQ(application->attributes["AXEnhancedUserInterface"], mode);
    }
    EXPECT_TRUE(fakecf::live().empty());
}

TEST_F(MacAccessibilityElements, AreMovedAlsoWhereTheirApplicationIsNotToBeFound) {
    fakecf::failing().insert("AXUIElementCreateApplication");
    const auto element = handle();
    const auto move = element.beginMove();
    EXPECT_EQ(moveWindow(), AXError::success);
    window->process.reset();
    const auto another = element.beginMove();
    EXPECT_EQ(moveWindow(), AXError::success);
}

} // namespace tilewright::testing
