// Display identity through the real adapters, and the display list.

#include "MacTestPlatform.h"

#include <MacOS/CFOwner.h>
#include <MacOS/DisplayNumbers.h>
#include <WindowManager/DisplayIdentity.h>

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;

namespace {

const QString uuid = u"37D8832A-2D66-02CA-B9F7-8F30A301B230"_s;
const QString otherUUID = u"5B1D3C5E-0A4B-4D8F-9C55-0D2B7C1E9A11"_s;

class MacDisplays : public ::testing::Test {
protected:
    [[nodiscard]] const std::vector<ScreenPtr>& all() { return desktop.platform.screens.all(); }
    [[nodiscard]] std::optional<DisplayIdentity> identity() {
        return displayIdentity(*all().front());
    }
    /// A description with one entry, as AppKit gives it.
    [[nodiscard]] static CFOwner<CFDictionaryRef> describe(const QString& key, CFTypeRef value) {
        const auto name = CFOwner<CFStringRef>::adopt(fakecf::makeString(key));
        const void* keys[] = {name.get()};
        const void* values[] = {value};
        return CFOwner<CFDictionaryRef>::adopt(
            CFDictionaryCreate(kCFAllocatorDefault, keys, values, 1, &kCFTypeDictionaryKeyCallBacks,
                               &kCFTypeDictionaryValueCallBacks));
    }
    [[nodiscard]] static std::optional<quint32> numberOf(qint64 value) {
        const auto number = CFOwner<CFNumberRef>::adopt(fakecf::makeNumber(value));
        return displayNumberIn(describe(u"NSScreenNumber"_s, number.get()).get());
    }

    MacDesktop desktop;
    FakeMacSystem& system = desktop.system;
    FakeAppKit& appKit = desktop.appKit;
};

} // namespace

TEST_F(MacDisplays, LieInQtSpaceFromTheTopOfThePrimaryDisplay) {
    // The second one's top is 20 points below the first one's.
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 1, 25), makeFacts({1440, -200, 1920, 1080}, 2)};
    const Screens& screens = desktop.platform.screens;
    const QtSpace first = screens.qtSpace(*all().at(0));
    const QtSpace second = screens.qtSpace(*all().at(1));
    // An item in the menu bar of each.
    EXPECT_EQ(first.toQt({1200, 875, 24, 25}), (QtRect{1200, 0, 24, 25}));
    EXPECT_EQ(second.toQt({3000, 855, 24, 25}), (QtRect{3000, 20, 24, 25}));
    EXPECT_EQ(second.toAppKit({3000, 20, 24, 25}), (AppKitRect{3000, 855, 24, 25}));
}

TEST_F(MacDisplays, AreKnownByTheNumberInTheirDescription) {
    EXPECT_EQ(numberOf(1), 1U);
    EXPECT_EQ(numberOf(0xFFFFFFFF), 0xFFFFFFFFU);
    EXPECT_EQ(numberOf(0), 0U);
}

TEST_F(MacDisplays, HaveNoNumberWhereTheEntryIsMissingOrIsNoNumber) {
    EXPECT_EQ(displayNumberIn(nullptr), std::nullopt);
    EXPECT_EQ(displayNumberIn(describe(u"NSDeviceSize"_s, kCFBooleanTrue).get()), std::nullopt);
    EXPECT_EQ(displayNumberIn(describe(u"NSScreenNumber"_s, kCFBooleanTrue).get()), std::nullopt);
    const auto text = CFOwner<CFStringRef>::adopt(fakecf::makeString(u"1"_s));
    EXPECT_EQ(displayNumberIn(describe(u"NSScreenNumber"_s, text.get()).get()), std::nullopt);
    fakecf::failing().insert("CFStringCreateWithCharacters");
    EXPECT_EQ(displayNumberIn(describe(u"NSScreenNumber"_s, text.get()).get()), std::nullopt);
}

TEST_F(MacDisplays, WithoutANumberHaveNoIdentity) {
    auto facts = makeFacts({0, 0, 1440, 900});
    facts.displayID.reset();
    appKit.screens = {facts};
    EXPECT_EQ(identity(), std::nullopt);
}

TEST_F(MacDisplays, AreIdentifiedByTheirPersistentUUID) {
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 7)};
    system.displayUUIDs[7] = uuid;
    EXPECT_EQ(identity(), (DisplayIdentity{uuid, u"Display 7"_s}));
    EXPECT_EQ(identity(), identity());
    EXPECT_TRUE(fakecf::live().empty());
}

TEST_F(MacDisplays, WithoutAUUIDAreIdentifiedByTheirNumber) {
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 1)};
    EXPECT_EQ(identity()->key, u"display-1"_s);
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 0xFFFFFFFF)};
    EXPECT_EQ(identity()->key, u"display-4294967295"_s);
}

TEST_F(MacDisplays, WhoseUUIDHasNoTextAreIdentifiedByTheirNumber) {
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 2)};
    system.displayUUIDs[2] = uuid;
    fakecf::failing().insert("CFUUIDCreateString");
    EXPECT_EQ(identity()->key, u"display-2"_s);
    EXPECT_TRUE(fakecf::live().empty());
}

TEST_F(MacDisplays, AskForTheirUUIDAtEveryReading) {
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 2)};
    const ScreenPtr screen = all().front();
    EXPECT_EQ(displayIdentity(*screen)->key, u"display-2"_s);
    system.displayUUIDs[2] = uuid;
    EXPECT_EQ(displayIdentity(*screen)->key, uuid);
}

TEST_F(MacDisplays, OfOneModelShareTheirNameAndNotTheirKey) {
    auto twin = makeFacts({1440, 0, 1440, 900}, 2);
    twin.localizedName = u"Display 1"_s;
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 1), twin};
    system.displayUUIDs = {{1, uuid}, {2, otherUUID}};
    const auto a = displayIdentity(*all()[0]);
    const auto b = displayIdentity(*all()[1]);
    EXPECT_EQ(a->localizedName, b->localizedName);
    EXPECT_NE(a->key, b->key);
}

TEST_F(MacDisplays, KeepTheirKeyUnderAnotherName) {
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 1)};
    system.displayUUIDs[1] = uuid;
    const auto before = identity();
    appKit.screens[0].localizedName = u"Renamed"_s;
    EXPECT_EQ(identity()->key, before->key);
    EXPECT_EQ(identity()->localizedName, u"Renamed"_s);
}

TEST_F(MacDisplays, AreTheSameObjectsForAsLongAsNothingChanges) {
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 1, 25), makeFacts({1440, 0, 1920, 1080}, 2)};
    const ScreenPtr first = all()[0];
    const ScreenPtr second = all()[1];
    EXPECT_EQ(all()[0], first);
    EXPECT_EQ(first->visibleFrame(), (AppKitRect{0, 0, 1440, 875}));
    appKit.screens[1].frame.x = 1500;
    EXPECT_EQ(all()[0], first);
    EXPECT_NE(all()[1], second);
    EXPECT_EQ(second->frame().x, 1440);
    EXPECT_EQ(all()[1]->frame().x, 1500);
}

TEST_F(MacDisplays, ThatAreAlikeInEverythingAreStillTwo) {
    auto facts = makeFacts({0, 0, 1440, 900});
    facts.displayID.reset();
    appKit.screens = {facts, facts};
    const auto before = all();
    ASSERT_EQ(before.size(), 2U);
    EXPECT_NE(before[0], before[1]);
    EXPECT_EQ(all(), before);
}

TEST_F(MacDisplays, AnnounceAChangeWithTheNewListInPlace) {
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 1)};
    const ScreenPtr before = all().front();
    std::vector<ScreenPtr> seen;
    QObject::connect(&desktop.platform.screens, &Screens::screensChanged, &desktop.platform.screens,
                     [&] { seen = all(); });
    appKit.screens[0].frame.width = 1280;
    appKit.announce(appkit::Notification::screenParametersChanged);
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0]->frame().width, 1280);
    EXPECT_EQ(before->frame().width, 1440);
}

TEST_F(MacDisplays, LeaveAListInUseAloneUntilTheLoopTurns) {
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 1), makeFacts({1440, 0, 1440, 900}, 2)};
    const std::vector<ScreenPtr>& held = all();
    const ScreenPtr second = held[1];
    appKit.screens.pop_back();
    EXPECT_EQ(all().size(), 1U);
    ASSERT_EQ(held.size(), 2U);
    EXPECT_EQ(held[1], second);
    desktop.platform.loop().runPosted();
    EXPECT_EQ(all().size(), 1U);
}

TEST_F(MacDisplays, HaveAMainOneWhichIsOneOfTheList) {
    EXPECT_EQ(desktop.platform.screens.main(), nullptr);
    appKit.screens = {makeFacts({0, 0, 1440, 900}, 1), makeFacts({1440, 0, 1440, 900}, 2)};
    appKit.mainScreen = 1;
    EXPECT_EQ(desktop.platform.screens.main(), all()[1]);
}
