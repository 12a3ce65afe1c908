#include "CompanionTexts.h"

#include <Companion/CompanionAppearance.h>
#include <Companion/CompanionDecoder.h>
#include <FakePortal.h>
#include <PrivateBus.h>
#include <Waiting.h>

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

const char* const interfaceSettings = "org.gnome.desktop.interface";

class CompanionAppearanceTest : public ::testing::Test {
protected:
    void tell(const char* method, const QByteArray& text) {
        const auto message = CompanionDecoder::decode(QString::fromLatin1(method), text);
        ASSERT_TRUE(message);
        state.take(*message);
    }
    void greet(const QByteArray& wish) {
        tell("Hello", R"({"reducedMotion":)" + wish + "," + helloText().mid(1));
    }

    PrivateBus bus;
    MessageBus own{bus.connect()};
    FakePortal portal{bus.connect()};
    CompanionState state;
    CompanionAppearance appearance{own, state};
    QSignalSpy changes{&appearance, &Appearance::prefersReducedMotionChanged};
};

} // namespace

TEST_F(CompanionAppearanceTest, FollowsTheCompanionWhereThereIsNoPortal) {
    EXPECT_EQ(appearance.prefersReducedMotion(), std::nullopt);
    greet("true");
    EXPECT_EQ(appearance.prefersReducedMotion(), true);
    EXPECT_EQ(changes.size(), 1);
    tell("MotionWish", R"({"reduced":false})");
    EXPECT_EQ(appearance.prefersReducedMotion(), false);
    tell("MotionWish", R"({"reduced":false})");
    EXPECT_EQ(changes.size(), 2) << "only what differs is told";
    // The shell stops its extensions behind the lock: that is no change of mind.
    state.lose();
    EXPECT_EQ(appearance.prefersReducedMotion(), false);
    tell("Hello", helloText());
    EXPECT_EQ(appearance.prefersReducedMotion(), std::nullopt) << "one that does not tell";
    EXPECT_EQ(changes.size(), 3);
}

TEST_F(CompanionAppearanceTest, BelievesThePortalWhereItSaysAnything) {
    greet("true");
    portal.set(interfaceSettings, "enable-animations", true);
    portal.appear();
    EXPECT_TRUE(waitUntil([&] { return appearance.prefersReducedMotion() == false; }));
    greet("true");
    tell("MotionWish", R"({"reduced":true})");
    EXPECT_EQ(appearance.prefersReducedMotion(), false);
    EXPECT_EQ(changes.size(), 2);
}

} // namespace tilewright::testing
