#include <FakePlatform.h>
#include <Tilewright/MenuBarLabel.h>

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

struct MenuBarLabelTest : public ::testing::Test {
    FakeDesktop desktop;
    FakePlatform& platform = desktop.platform;
    MenuBarLabel label;
};

} // namespace

TEST_F(MenuBarLabelTest, ShowsAnEmptyCupWhileNoSessionRuns) {
    EXPECT_EQ(platform.fakeStatusItem.symbols, std::vector{QStringLiteral("cup.and.saucer")});
    EXPECT_FALSE(platform.fakeStatusItem.icon.isNull());
    EXPECT_EQ(platform.fakeStatusItem.accessibleName, QStringLiteral("Tilewright"));
}

TEST_F(MenuBarLabelTest, ShowsAFullCupAsSoonAsASessionStarts) {
    KeepAwakeManager::shared().activate(KeepAwakeSession::indefinite());
    platform.fakeMainLoop.runPosted();
    EXPECT_EQ(platform.fakeStatusItem.symbols.back(), QStringLiteral("cup.and.saucer.fill"));
    KeepAwakeManager::shared().deactivate();
    platform.fakeMainLoop.runPosted();
    EXPECT_EQ(platform.fakeStatusItem.symbols.back(), QStringLiteral("cup.and.saucer"));
}

TEST_F(MenuBarLabelTest, ShowsAnEmptyCupAgainWhenATimedSessionEndsByItself) {
    KeepAwakeManager::shared().activate(KeepAwakeSession::timed(3));
    platform.fakeMainLoop.advance(std::chrono::seconds(2));
    EXPECT_EQ(label.symbolName(), QStringLiteral("cup.and.saucer.fill"));
    platform.fakeMainLoop.advance(std::chrono::seconds(2));
    EXPECT_EQ(label.symbolName(), QStringLiteral("cup.and.saucer"));
    EXPECT_EQ(platform.fakeStatusItem.symbols.size(), 3U) << "not once for every second";
}

TEST_F(MenuBarLabelTest, TellsOfTheSessionInItsNameAtItsStartAndItsEndAndNeverInBetween) {
    QString& told = platform.fakeStatusItem.accessibleName;
    KeepAwakeManager::shared().activate(KeepAwakeSession::timed(3));
    platform.fakeMainLoop.runPosted();
    EXPECT_EQ(std::exchange(told, QString()), QStringLiteral("Tilewright — awake"));
    platform.fakeMainLoop.advance(std::chrono::seconds(2));
    EXPECT_EQ(told, QString());
    platform.fakeMainLoop.advance(std::chrono::seconds(2));
    EXPECT_EQ(told, QStringLiteral("Tilewright"));
}

TEST_F(MenuBarLabelTest, StaysEmptyWhenTheAssertionIsRefused) {
    platform.fakePowerAssertions.failure = -1;
    KeepAwakeManager::shared().activate(KeepAwakeSession::indefinite());
    platform.fakeMainLoop.runPosted();
    EXPECT_EQ(label.symbolName(), QStringLiteral("cup.and.saucer"));
}

} // namespace tilewright::testing
