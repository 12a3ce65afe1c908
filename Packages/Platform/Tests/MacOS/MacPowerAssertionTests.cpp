// Keep-awake sessions through the system's power assertions.

#include "MacTestPlatform.h"

#include <KeepAwake/KeepAwakeManager.h>

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;

namespace {

class MacPowerAssertions : public ::testing::Test {
protected:
    ~MacPowerAssertions() override { manager.deactivate(); }

    MacDesktop desktop;
    FakeMacSystem& system = desktop.system;
    KeepAwakeManager& manager = KeepAwakeManager::shared();
};

} // namespace

TEST_F(MacPowerAssertions, AreMadeWithTheTypeLevelAndNameOfASession) {
    manager.activate(KeepAwakeSession::indefinite());
    ASSERT_EQ(system.assertions.size(), 1U);
    const auto& assertion = system.assertions.begin()->second;
    EXPECT_EQ(assertion.type, u"PreventUserIdleDisplaySleep"_s);
    EXPECT_EQ(assertion.level, 255U);
    EXPECT_EQ(assertion.name, u"Tilewright keep-awake"_s);
    EXPECT_TRUE(manager.isActive());
    EXPECT_EQ(manager.remainingSeconds(), 0);
    EXPECT_TRUE(fakecf::live().empty());
}

TEST_F(MacPowerAssertions, AreReleasedOnceAtTheEndOfASession) {
    manager.activate(KeepAwakeSession::indefinite());
    manager.deactivate();
    EXPECT_EQ(system.releasedAssertions, std::vector<quint32>{1});
    EXPECT_TRUE(system.assertions.empty());
    manager.deactivate();
    EXPECT_EQ(system.releasedAssertions.size(), 1U);
}

TEST_F(MacPowerAssertions, AreNeverHeldTwice) {
    manager.activate(KeepAwakeSession::indefinite());
    manager.activate(KeepAwakeSession::timed(900));
    manager.activate(KeepAwakeSession::timed(900));
    EXPECT_EQ(system.mostAssertions, 1U);
    EXPECT_EQ(system.createdAssertions.size(), 3U);
    EXPECT_EQ(system.releasedAssertions, (std::vector<quint32>{1, 2}));
}

TEST_F(MacPowerAssertions, AreHeldUntilATimedSessionHasCountedDown) {
    manager.activate(KeepAwakeSession::timed(900));
    desktop.platform.loop().advance(899s);
    EXPECT_EQ(manager.remainingSeconds(), 1);
    EXPECT_EQ(system.assertions.size(), 1U);
    desktop.platform.loop().advance(1s);
    EXPECT_FALSE(manager.isActive());
    EXPECT_TRUE(system.assertions.empty());
}

TEST_F(MacPowerAssertions, LeaveTheManagerInactiveWhenTheyAreRefused) {
    system.assertionStatus = static_cast<int>(0xe00002c1);
    manager.activate(KeepAwakeSession::timed(900));
    EXPECT_FALSE(manager.isActive());
    EXPECT_EQ(manager.remainingSeconds(), 0);
    EXPECT_TRUE(system.releasedAssertions.empty());
    EXPECT_EQ(desktop.platform.loop().activeTimerCount(), 0U);
    EXPECT_TRUE(fakecf::live().empty());
}

TEST_F(MacPowerAssertions, AreRefusedWhenTheirTextCannotBeMade) {
    fakecf::failing().insert("CFStringCreateWithCharacters");
    manager.activate(KeepAwakeSession::indefinite());
    EXPECT_FALSE(manager.isActive());
    EXPECT_TRUE(system.createdAssertions.empty());
}

TEST_F(MacPowerAssertions, AnswerTheSystemsStatusAndNoIdWhenRefused) {
    system.assertionStatus = -5;
    const auto result =
        desktop.platform.powerAssertions.create(u"PreventUserIdleDisplaySleep"_s, 255, u"x"_s);
    EXPECT_EQ(result.status, -5);
    EXPECT_EQ(result.id, 0U);
}

TEST_F(MacPowerAssertions, OfAnUnknownIdAreReleasedWithoutHarm) {
    desktop.platform.powerAssertions.release(99);
    EXPECT_FALSE(manager.isActive());
}
