#include <FakePlatform.h>
#include <Tilewright/SnapSettings.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tilewright;
using tilewright::testing::FakeDesktop;
using tilewright::testing::FakePlatform;

namespace {

const QString key = u"snapActivationModifier"_s;

SnapModifier loadedFrom(const QString& stored) {
    FakeDesktop desktop;
    desktop.platform.fakeUserDefaults.values[key] = stored;
    const SnapModifier modifier = SnapSettings::shared().modifier();
    EXPECT_TRUE(desktop.platform.fakeUserDefaults.writes.empty());
    return modifier;
}

} // namespace

TEST(SnapSettings, StartWithControlAndStoreNothingOnAFreshInstallation) {
    FakeDesktop desktop;
    EXPECT_EQ(SnapSettings::shared().modifier(), SnapModifier::control);
    EXPECT_TRUE(desktop.platform.fakeUserDefaults.writes.empty());
    EXPECT_TRUE(desktop.platform.fakeUserDefaults.values.empty());
}

TEST(SnapSettings, ReadBackEachStoredKey) {
    for (const SnapModifier modifier : SnapModifiers::allCases)
        EXPECT_EQ(loadedFrom(rawValue(modifier)), modifier);
}

TEST(SnapSettings, StartWithControlWhereTheStoredTextIsUnknown) {
    EXPECT_EQ(loadedFrom(u"Command"_s), SnapModifier::control);
    EXPECT_EQ(loadedFrom(u"Control"_s), SnapModifier::control);
    EXPECT_EQ(loadedFrom(u""_s), SnapModifier::control);
    EXPECT_EQ(loadedFrom(u"hyper"_s), SnapModifier::control);
}

TEST(SnapSettings, KeepThePickForTheNextStart) {
    FakePlatform platform;
    {
        const Platform::Installation run(platform);
        SnapSettings::shared().setModifier(SnapModifier::option);
        EXPECT_EQ(SnapSettings::shared().modifier(), SnapModifier::option);
    }
    EXPECT_EQ(platform.fakeUserDefaults.values.at(key), u"option"_s);
    const Platform::Installation nextRun(platform);
    EXPECT_EQ(SnapSettings::shared().modifier(), SnapModifier::option);
}

TEST(SnapSettings, StoreAndAnnounceAlsoThePresentChoice) {
    FakeDesktop desktop;
    SnapSettings& settings = SnapSettings::shared();
    int announced = 0;
    QObject::connect(&settings, &ObservableObject::objectWillChange, &settings,
                     [&] { ++announced; });
    settings.setModifier(SnapModifier::control);
    settings.setModifier(SnapModifier::control);
    EXPECT_EQ(announced, 2);
    const auto& writes = desktop.platform.fakeUserDefaults.writes;
    ASSERT_EQ(writes.size(), 2U);
    EXPECT_EQ(writes[0], std::pair(key, u"control"_s));
    EXPECT_EQ(writes[1], std::pair(key, u"control"_s));
}

TEST(SnapSettings, AnnounceAChangeBeforeItHappens) {
    FakeDesktop desktop;
    SnapSettings& settings = SnapSettings::shared();
    std::vector<SnapModifier> seen;
    QObject::connect(&settings, &ObservableObject::objectWillChange, &settings, [&] {
        seen.push_back(settings.modifier());
        EXPECT_TRUE(desktop.platform.fakeUserDefaults.writes.empty());
    });
    settings.setModifier(SnapModifier::shift);
    EXPECT_EQ(seen, std::vector{SnapModifier::control});
    EXPECT_EQ(settings.modifier(), SnapModifier::shift);
}

TEST(SnapSettings, AreOneSharedInstanceUntilThePlatformGoes) {
    FakeDesktop desktop;
    EXPECT_EQ(&SnapSettings::shared(), &SnapSettings::shared());
}
