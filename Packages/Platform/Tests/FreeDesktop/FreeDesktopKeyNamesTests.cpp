#include <FreeDesktop/FreeDesktopKeyNames.h>

#include <gtest/gtest.h>

namespace tilewright::testing {

TEST(FreeDesktopKeyNames, NameTheTwoKeysThatBearAnotherWord) {
    const FreeDesktopKeyNames names;
    EXPECT_EQ(names.localName(ModifierFlag::option), QStringLiteral("Alt"));
    EXPECT_EQ(names.localName(ModifierFlag::command), QStringLiteral("Super"));
    EXPECT_EQ(names.localName(ModifierFlag::control), std::nullopt);
    EXPECT_EQ(names.localName(ModifierFlag::shift), std::nullopt);
}

} // namespace tilewright::testing
