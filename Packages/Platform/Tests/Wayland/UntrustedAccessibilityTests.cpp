// What nobody may reach answers so, and says so when asked.

#include <Wayland/UntrustedAccessibility.h>

#include <gtest/gtest.h>

using namespace tilewright;

TEST(UntrustedAccessibility, TellsTheUserWhatIsMissingAtEachRequest) {
    int told = 0;
    UntrustedAccessibility accessibility([&] { ++told; });
    EXPECT_FALSE(accessibility.isTrusted());
    EXPECT_EQ(told, 0) << "only where it is asked for";
    EXPECT_FALSE(accessibility.requestTrust());
    EXPECT_FALSE(accessibility.requestTrust());
    EXPECT_EQ(told, 2);
}

TEST(UntrustedAccessibility, AnswersThatTheInterfaceIsDisabled) {
    const UntrustedAccessibility accessibility([] {});
    EXPECT_EQ(accessibility.elementAtPosition({1, 1}).error, AXError::apiDisabled);
    const auto position = accessibility.makeValue(AXPoint{1, 2});
    for (const AccessibilityElement& element :
         {accessibility.systemWideElement(), accessibility.applicationElement(1)}) {
        EXPECT_EQ(element.string(AXAttribute::role).error, AXError::apiDisabled);
        EXPECT_EQ(element.element(AXAttribute::focusedUIElement).error, AXError::apiDisabled);
        EXPECT_EQ(element.setValue(AXAttribute::position, *position), AXError::apiDisabled);
        ProcessID process = 7;
        EXPECT_EQ(element.processID(process), AXError::apiDisabled);
        EXPECT_EQ(process, 7);
    }
}
