#include <KeepAwake/KeepAwakeSession.h>

#include <gtest/gtest.h>

using tilewright::KeepAwakeSession;

TEST(KeepAwakeSession, IsEqualToATimedSessionOfTheSameDurationOnly) {
    EXPECT_EQ(KeepAwakeSession::timed(900), KeepAwakeSession::timed(900));
    EXPECT_NE(KeepAwakeSession::timed(900), KeepAwakeSession::timed(900.5));
    EXPECT_NE(KeepAwakeSession::timed(0), KeepAwakeSession::indefinite());
}

TEST(KeepAwakeSession, IndefiniteIsEqualToItselfOnly) {
    EXPECT_EQ(KeepAwakeSession::indefinite(), KeepAwakeSession::indefinite());
    EXPECT_NE(KeepAwakeSession::indefinite(), KeepAwakeSession::timed(900));
}

TEST(KeepAwakeSession, CarriesItsDurationOnlyWhenTimed) {
    const auto timed = KeepAwakeSession::timed(90.5);
    ASSERT_NE(timed.asTimed(), nullptr);
    EXPECT_EQ(timed.asTimed()->duration, 90.5);
    EXPECT_EQ(KeepAwakeSession::indefinite().asTimed(), nullptr);
}
