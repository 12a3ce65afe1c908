#include "FakeMacSystem.h"

#include <MacOS/CFText.h>

#include <gtest/gtest.h>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;

TEST(CFOwner, ReleasesWhatItAdopted) {
    const FakeMacSystem system;
    {
        const auto owner = CFOwner<CFStringRef>::adopt(fakecf::makeString(u"text"_s));
        EXPECT_EQ(fakecf::live().size(), 1U);
    }
    EXPECT_TRUE(fakecf::live().empty());
}

TEST(CFOwner, LeavesWhatItRetainedToItsOwner) {
    const FakeMacSystem system;
    const CFStringRef text = fakecf::makeString(u"text"_s);
    { const auto owner = CFOwner<CFStringRef>::retain(text); }
    EXPECT_EQ(fakecf::live().size(), 1U);
    CFRelease(text);
}

TEST(CFOwner, SharesWhenCopiedAndHandsOnWhenMoved) {
    const FakeMacSystem system;
    {
        auto first = CFOwner<CFStringRef>::adopt(fakecf::makeString(u"text"_s));
        auto second = first;
        auto third = std::move(first);
        EXPECT_FALSE(first); // NOLINT: what is left after a move is what is looked at
        second = third;
        third = CFOwner<CFStringRef>();
        EXPECT_EQ(fakecf::live().size(), 1U);
        EXPECT_TRUE(second);
        auto& alias = second;
        second = alias;
        EXPECT_TRUE(second);
    }
    EXPECT_TRUE(fakecf::live().empty());
}

TEST(CFOwner, OwnsNothingWhenNullIsAdoptedOrRetained) {
    const FakeMacSystem system;
    EXPECT_FALSE(CFOwner<CFStringRef>::adopt(nullptr));
    EXPECT_FALSE(CFOwner<CFStringRef>::retain(nullptr));
}

TEST(CFText, KeepsEveryCharacter) {
    const FakeMacSystem system;
    for (const QString& text : {u""_s, u"plain"_s, u"naïve ⌃⇧⌥⌘"_s, u"\U0001F600"_s,
                                QString(QChar(0)) + u"after a zero"_s}) {
        const auto string = makeCFString(text);
        EXPECT_EQ(textOf(string.get()), text);
    }
}

TEST(CFText, IsNoneForNullAndForWhatIsNoString) {
    const FakeMacSystem system;
    EXPECT_EQ(textOf(nullptr), std::nullopt);
    EXPECT_EQ(textOf(kCFBooleanTrue), std::nullopt);
    fakecf::failing().insert("CFStringCreateWithCharacters");
    EXPECT_FALSE(makeCFString(u"text"_s));
}
