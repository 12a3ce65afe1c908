// The fakes have to notice what they are there to notice.

#include "FakeMacSystem.h"

#include <MacOS/CFText.h>

#include <gtest/gtest.h>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;

TEST(FakeCoreFoundation, CountsReferences) {
    const FakeMacSystem system;
    const CFStringRef text = fakecf::makeString(u"text"_s);
    EXPECT_EQ(fakecf::live(), std::vector<std::string>{"string \"text\""});
    CFRetain(text);
    CFRelease(text);
    EXPECT_EQ(fakecf::live().size(), 1U);
    CFRelease(text);
    EXPECT_TRUE(fakecf::live().empty());
}

TEST(FakeCoreFoundation, ADictionaryHoldsItsKeysAndValuesUntilItEnds) {
    const FakeMacSystem system;
    const CFStringRef key = fakecf::makeString(u"key"_s);
    const void* keys[] = {key};
    const void* values[] = {kCFBooleanTrue};
    const CFDictionaryRef dictionary =
        CFDictionaryCreate(kCFAllocatorDefault, keys, values, 1, &kCFTypeDictionaryKeyCallBacks,
                           &kCFTypeDictionaryValueCallBacks);
    CFRelease(key);
    EXPECT_EQ(fakecf::live().size(), 2U);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, key), kCFBooleanTrue);
    CFRelease(dictionary);
    EXPECT_TRUE(fakecf::live().empty());
}

using FakeCoreFoundationDeathTest = ::testing::Test;

TEST(FakeCoreFoundationDeathTest, EndsTheProcessWhenOneReferenceIsReleasedTwice) {
    EXPECT_DEATH(
        {
            const CFStringRef text = fakecf::makeString(u"text"_s);
            CFRelease(text);
            CFRelease(text);
        },
        "CFRelease used a released string \"text\"");
}

TEST(FakeCoreFoundationDeathTest, EndsTheProcessWhenAReleasedObjectIsUsed) {
    EXPECT_DEATH(
        {
            const CFStringRef text = fakecf::makeString(u"text"_s);
            CFRelease(text);
            CFStringGetLength(text);
        },
        "used a released string");
}

TEST(FakeCoreFoundationDeathTest, EndsTheProcessWhenNullIsUsed) {
    EXPECT_DEATH(CFRelease(nullptr), "CFRelease was given null");
    EXPECT_DEATH(CFRetain(nullptr), "CFRetain was given null");
    EXPECT_DEATH(CFGetTypeID(nullptr), "CFGetTypeID was given null");
}

TEST(FakeCoreFoundationDeathTest, EndsTheProcessWhenAnObjectIsOfAnotherType) {
    EXPECT_DEATH(CFNumberGetValue(reinterpret_cast<CFNumberRef>(fakecf::makeString(u"text"_s)),
                                  kCFNumberSInt64Type, nullptr),
                 "CFNumberGetValue was given string \"text\"");
}
