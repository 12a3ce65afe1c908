#include "FakePortal.h"
#include "PrivateBus.h"

#include <FreeDesktop/FreeDesktopAppearance.h>
#include <Waiting.h>

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <optional>

namespace tilewright::testing {

namespace {

const char* const appearance = "org.freedesktop.appearance";
const char* const interfaceSettings = "org.gnome.desktop.interface";
const char* const kdeSettings = "org.kde.kdeglobals.KDE";

using Wish = std::optional<bool>;

class MotionWish : public ::testing::Test {
protected:
    void start() {
        wish.emplace(own);
        changes.emplace(&*wish, &FreeDesktopAppearance::reducedMotionChanged);
    }
    void expect(Wish expected) {
        EXPECT_TRUE(waitUntil([&] { return wish->prefersReducedMotion() == expected; }));
    }

    PrivateBus bus;
    MessageBus own{bus.connect()};
    FakePortal portal{bus.connect()};
    std::optional<FreeDesktopAppearance> wish;
    std::optional<QSignalSpy> changes;
};

class DarkWish : public MotionWish {
protected:
    void start() {
        MotionWish::start();
        changes.emplace(&*wish, &FreeDesktopAppearance::darkChanged);
    }
    void expect(bool expected) {
        EXPECT_TRUE(waitUntil([&] { return wish->prefersDark() == expected; }));
    }
};

} // namespace

TEST_F(MotionWish, IsWhatThePortalTellsAtTheStart) {
    portal.set(interfaceSettings, "enable-animations", false);
    portal.appear();
    start();
    expect(true);
    EXPECT_EQ(changes->size(), 1);
}

TEST_F(MotionWish, IsAskedForByAnyOfTheSettings) {
    portal.appear();
    portal.set(interfaceSettings, "enable-animations", true);
    start();
    expect(false);
    portal.change(appearance, "reduced-motion", 1U);
    expect(true);
    portal.change(appearance, "reduced-motion", 0U);
    expect(false);
    portal.change(kdeSettings, "AnimationDurationFactor", QStringLiteral("0"));
    expect(true);
    portal.change(kdeSettings, "AnimationDurationFactor", 0.5);
    expect(false);
    portal.change(interfaceSettings, "enable-animations", false);
    expect(true);
}

TEST_F(MotionWish, IsUnknownWhereThePortalSaysNothingOfIt) {
    portal.set(appearance, "reduced-motion", 0U);
    portal.set(interfaceSettings, "enable-animations", QStringLiteral("no truth value"));
    portal.set(kdeSettings, "AnimationDurationFactor", QStringLiteral("no number"));
    portal.set(interfaceSettings, "font-name", QStringLiteral("Sans 11"));
    portal.appear();
    start();
    EXPECT_TRUE(waitUntil([&] { return portal.reads == 1; }));
    // Something that comes after the answer.
    portal.change(appearance, "color-scheme", 1U);
    portal.change("org.example", "enable-animations", false);
    portal.change(interfaceSettings, "enable-animations", true);
    expect(false);
    EXPECT_EQ(changes->size(), 1) << "it was unknown until then";
}

TEST_F(MotionWish, IsAskedOfAPortalThatStartsLaterAndIsNotStartedForIt) {
    portal.set(interfaceSettings, "enable-animations", false);
    start();
    EXPECT_EQ(wish->prefersReducedMotion(), std::nullopt);
    portal.appear();
    expect(true);
    EXPECT_EQ(portal.reads, 1);
}

TEST_F(MotionWish, WaitsForNoAnswerOfTheBusAtTheStart) {
    portal.set(interfaceSettings, "enable-animations", false);
    portal.appear();
    EXPECT_TRUE(bus.isDoneWithoutAnAnswer([&] { wish.emplace(own); }));
    EXPECT_EQ(wish->prefersReducedMotion(), std::nullopt);
    expect(true);
    portal.change(interfaceSettings, "enable-animations", true);
    expect(false);
}

TEST_F(MotionWish, IsUnknownWithoutABus) {
    MessageBus absent(PrivateBus::absent());
    const FreeDesktopAppearance without(absent);
    EXPECT_EQ(without.prefersReducedMotion(), std::nullopt);
}

TEST_F(DarkWish, IsTheStandardsDarkSchemeAndFollowsIt) {
    portal.set(appearance, "color-scheme", 1U);
    portal.appear();
    start();
    expect(true);
    portal.change(appearance, "color-scheme", 2U);
    expect(false);
    portal.change(appearance, "color-scheme", 1U);
    expect(true);
    portal.change(appearance, "color-scheme", 0U);
    expect(false);
    portal.change(appearance, "color-scheme", QStringLiteral("no number"));
    portal.change("org.example", "color-scheme", 1U);
    portal.change(appearance, "reduced-motion", 1U);
    EXPECT_TRUE(waitUntil([&] { return wish->prefersReducedMotion() == Wish(true); }));
    EXPECT_FALSE(wish->prefersDark());
    EXPECT_EQ(changes->size(), 4);
}

TEST_F(DarkWish, IsNoneWithoutAPortalOrABus) {
    start();
    EXPECT_FALSE(wish->prefersDark());
    MessageBus absent(PrivateBus::absent());
    EXPECT_FALSE(FreeDesktopAppearance(absent).prefersDark());
}

TEST(CombinedMotionWish, HasMotionReducedWhereOneSourceAsksForIt) {
    EXPECT_EQ(combinedMotionWish({}, {}), std::nullopt);
    EXPECT_EQ(combinedMotionWish(false, {}), Wish(false));
    EXPECT_EQ(combinedMotionWish({}, true), Wish(true));
    EXPECT_EQ(combinedMotionWish(false, true), Wish(true));
    EXPECT_EQ(combinedMotionWish(true, false), Wish(true));
    EXPECT_EQ(combinedMotionWish(false, false), Wish(false));
}

} // namespace tilewright::testing
